#include "stats/row_concentration.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "stats/median.h"

namespace ovik {

namespace {

std::vector<double> column_medians(MatrixView<const double> X) {
    std::vector<double> medians(X.columns);
    std::vector<double> values(X.rows);
    for (std::size_t d = 0; d < X.columns; ++d) {
        for (std::size_t n = 0; n < X.rows; ++n) {
            values[n] = X.values[n * X.columns + d];
        }
        medians[d] = median(values);
    }
    return medians;
}

double concentration(const double* row, const std::vector<double>& medians) {
    double largest = 0.0;
    for (std::size_t d = 0; d < medians.size(); ++d) {
        largest = std::max(largest, std::fabs(row[d] - medians[d]));
    }
    if (largest == 0.0) {
        return 0.0;
    }
    // As parts of the largest one, squares of no values get out of range.
    double sum = 0.0;
    for (std::size_t d = 0; d < medians.size(); ++d) {
        const double part = (row[d] - medians[d]) / largest;
        sum += part * part;
    }
    return 1.0 / sum;
}

}  // namespace

std::vector<double> row_concentrations(MatrixView<const double> X) {
    std::vector<double> concentrations;
    if (X.rows == 0) {
        return concentrations;
    }
    const std::vector<double> medians = column_medians(X);
    concentrations.reserve(X.rows);
    for (std::size_t n = 0; n < X.rows; ++n) {
        concentrations.push_back(concentration(X.values + n * X.columns, medians));
    }
    return concentrations;
}

}  // namespace ovik
