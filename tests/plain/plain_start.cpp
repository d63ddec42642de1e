#include "tests/plain/plain_start.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
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

std::vector<std::size_t> sampled_rows(std::size_t N, unsigned int seed) {
    std::srand(seed);
    std::size_t wanted = std::min<std::size_t>(std::max<std::size_t>(N / 10, 1000), 100000);
    std::vector<std::size_t> rows;
    for (std::size_t n = 0; n < N; ++n) {
        const auto drawn = static_cast<unsigned long long>(std::rand());
        if (drawn * (N - n) < wanted * 2147483648ULL) {
            rows.push_back(n);
            --wanted;
        }
    }
    return rows;
}

std::vector<double> placed_among_neighbours(const std::vector<double>& points,
                                            std::size_t N,
                                            std::size_t dims,
                                            std::vector<double> places,
                                            std::size_t no_dims,
                                            std::size_t K) {
    const auto median_of = [no_dims](const std::vector<double>& Y,
                                     const std::vector<std::size_t>& rows,
                                     std::size_t d) {
        std::vector<double> values;
        for (const std::size_t row : rows) {
            values.push_back(Y[row * no_dims + d]);
        }
        return median(values);
    };
    std::vector<std::size_t> given;
    for (std::size_t n = 0; n < N; ++n) {
        if (!std::isnan(places[n * no_dims])) {
            given.push_back(n);
        }
    }
    const std::vector<double> first = places;
    bool goes_on = true;
    while (goes_on) {
        goes_on = false;
        const std::vector<double> before = places;
        for (std::size_t n = 0; n < N; ++n) {
            if (!std::isnan(before[n * no_dims])) {
                continue;
            }
            std::vector<std::size_t> placed;
            const std::vector<std::size_t> nearest = nearest_others(points, N, dims, n);
            for (std::size_t m = 0; m < K && placed.size() < 25; ++m) {
                if (!std::isnan(before[nearest[m] * no_dims])) {
                    placed.push_back(nearest[m]);
                }
            }
            for (std::size_t d = 0; d < no_dims && !placed.empty(); ++d) {
                places[n * no_dims + d] = median_of(before, placed, d);
                goes_on = true;
            }
        }
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        places[i] = std::isnan(places[i]) ? median_of(first, given, i % no_dims) : places[i];
    }
    return places;
}

std::vector<double> with_spread(std::vector<double> Y, std::size_t no_dims, double spread) {
    const std::size_t N = Y.size() / no_dims;
    double widest = 0.0;
    for (std::size_t d = 0; d < no_dims; ++d) {
        double mean = 0.0;
        for (std::size_t n = 0; n < N; ++n) {
            mean += Y[n * no_dims + d];
        }
        mean /= static_cast<double>(N);
        double squares = 0.0;
        for (std::size_t n = 0; n < N; ++n) {
            const double deviation = Y[n * no_dims + d] - mean;
            squares += deviation * deviation;
        }
        widest = std::max(widest, std::sqrt(squares / static_cast<double>(N - 1)));
    }
    for (double& y : Y) {
        y *= spread / widest;
    }
    return Y;
}

}  // namespace plain
