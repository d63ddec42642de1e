#include "tests/plain/plain_metrics.h"

#include <cmath>

namespace plain {

namespace {

void centre(double* row, std::size_t columns) {
    double sum = 0.0;
    for (std::size_t d = 0; d < columns; ++d) {
        sum += row[d];
    }
    const double mean = sum / static_cast<double>(columns);
    for (std::size_t d = 0; d < columns; ++d) {
        row[d] -= mean;
    }
}

void normalise(double* row, std::size_t columns) {
    double sum = 0.0;
    for (std::size_t d = 0; d < columns; ++d) {
        sum += row[d] * row[d];
    }
    const double norm = std::sqrt(sum);
    for (std::size_t d = 0; d < columns; ++d) {
        row[d] /= norm;
    }
}

}  // namespace

void pearson_rows(std::vector<double>& values, std::size_t columns) {
    for (std::size_t start = 0; start < values.size(); start += columns) {
        centre(values.data() + start, columns);
        normalise(values.data() + start, columns);
    }
}

void cosine_rows(std::vector<double>& values, std::size_t columns) {
    for (std::size_t start = 0; start < values.size(); start += columns) {
        normalise(values.data() + start, columns);
    }
}

void spearman_rows(std::vector<double>& values, std::size_t columns) {
    const std::vector<double> given = values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t start = i - i % columns;
        double lower = 0.0;
        double equal = 0.0;
        for (std::size_t d = start; d < start + columns; ++d) {
            lower += given[d] < given[i] ? 1.0 : 0.0;
            equal += given[d] == given[i] ? 1.0 : 0.0;
        }
        values[i] = lower + 0.5 * (equal + 1.0);
    }
    pearson_rows(values, columns);
}

double correlation_distance(const double* a, const double* b, std::size_t columns) {
    long double mean_a = 0.0L;
    long double mean_b = 0.0L;
    for (std::size_t d = 0; d < columns; ++d) {
        mean_a += a[d];
        mean_b += b[d];
    }
    mean_a /= static_cast<long double>(columns);
    mean_b /= static_cast<long double>(columns);
    long double ab = 0.0L;
    long double aa = 0.0L;
    long double bb = 0.0L;
    for (std::size_t d = 0; d < columns; ++d) {
        ab += (a[d] - mean_a) * (b[d] - mean_b);
        aa += (a[d] - mean_a) * (a[d] - mean_a);
        bb += (b[d] - mean_b) * (b[d] - mean_b);
    }
    return static_cast<double>(1.0L - ab / std::sqrt(aa * bb));
}

}  // namespace plain
