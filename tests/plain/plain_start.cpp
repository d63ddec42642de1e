#include "tests/plain/plain_start.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace plain {

namespace {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2.0;
}

/// The others in the order of their distance.
std::vector<std::size_t> nearest_others(const std::vector<double>& points,
                                        std::size_t N,
                                        std::size_t dims,
                                        std::size_t n) {
    std::vector<std::pair<double, std::size_t>> others;
    for (std::size_t m = 0; m < N; ++m) {
        double squares = 0.0;
        for (std::size_t d = 0; d < dims; ++d) {
            const double difference = points[n * dims + d] - points[m * dims + d];
            squares += difference * difference;
        }
        if (m != n) {
            others.emplace_back(std::sqrt(squares), m);
        }
    }
    std::sort(others.begin(), others.end());
    std::vector<std::size_t> rows;
    for (const auto& [distance, row] : others) {
        rows.push_back(row);
    }
    return rows;
}

}  // namespace

std::vector<double> component_start(const Components& components,
                                    std::size_t count,
                                    std::size_t N,
                                    std::size_t no_dims,
                                    double spread) {
    const double factor = spread / std::sqrt(components.variances[0]);
    std::vector<double> Y(N * no_dims);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t d = 0; d < no_dims; ++d) {
            Y[n * no_dims + d] = components.scores[n * count + d] * factor;
        }
    }
    return Y;
}

std::vector<double> start_at_places(const std::vector<double>& points,
                                    std::size_t N,
                                    std::size_t dims,
                                    const std::vector<double>& places,
                                    std::size_t no_dims) {
    std::vector<double> Y = places;
    std::vector<std::size_t> all_placed;
    for (std::size_t n = 0; n < N; ++n) {
        if (!std::isnan(places[n * no_dims])) {
            all_placed.push_back(n);
        }
    }
    for (std::size_t n = 0; n < N; ++n) {
        if (!std::isnan(places[n * no_dims])) {
            continue;
        }
        std::vector<std::size_t> placed;
        const std::vector<std::size_t> nearest = nearest_others(points, N, dims, n);
        for (std::size_t m = 0; m < std::min<std::size_t>(25, nearest.size()); ++m) {
            if (!std::isnan(places[nearest[m] * no_dims])) {
                placed.push_back(nearest[m]);
            }
        }
        if (placed.empty()) {
            placed = all_placed;
        }
        for (std::size_t d = 0; d < no_dims; ++d) {
            std::vector<double> values;
            for (const std::size_t row : placed) {
                values.push_back(places[row * no_dims + d]);
            }
            Y[n * no_dims + d] = median(values);
        }
    }
    return Y;
}

}  // namespace plain
