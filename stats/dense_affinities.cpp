#include "stats/dense_affinities.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <vector>

#include "stats/bandwidth_search.h"
#include "stats/pairwise_distances.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kBandwidthAttempts = 500;

/// Runs `fill(n, squared_distances)` for every row, spread over the cores.
template <typename Fill>
void for_each_row(MatrixView<const double> points, const FitNotes& notes, const Fill& fill) {
    const auto distances = malloc_array<double>(points.rows * points.rows);
    require_allocated(distances);
    tell(notes, FitNote::DistancesBegin);
    squared_distance_matrix(points.values, points.rows, points.columns, distances.get());
    tell(notes, FitNote::DistancesDone);
    parallel_for_each(points.rows, 1, [&](std::size_t n) {
        fill(n, std::span<const double>(distances.get() + n * points.rows, points.rows));
    });
}

/// Writes the affinities of row n to all others under one perplexity.
void calibrate_row(std::size_t n,
                   std::span<const double> squared_distances,
                   double perplexity,
                   double* row) {
    const auto fill = [=](double beta) {
        for (std::size_t m = 0; m < squared_distances.size(); ++m) {
            row[m] = std::exp((-beta) * squared_distances[m]);
        }
        row[n] = DBL_MIN;
    };
    calibrate_similarities({squared_distances, row, n}, perplexity, kBandwidthAttempts, 1.0, fill);
}

/// The nearest others of row n, in no order; of rows equally far the earlier ones.
std::vector<std::uint32_t> nearest_others(std::size_t n,
                                          std::span<const double> squared_distances,
                                          std::size_t count) {
    std::vector<std::uint32_t> others;
    others.reserve(squared_distances.size());
    for (std::size_t m = 0; m < squared_distances.size(); ++m) {
        if (m != n && std::isfinite(squared_distances[m])) {
            others.push_back(static_cast<std::uint32_t>(m));
        }
    }
    if (count < others.size()) {
        std::nth_element(others.begin(),
                         others.begin() + static_cast<std::ptrdiff_t>(count),
                         others.end(),
                         [=](std::uint32_t a, std::uint32_t b) {
                             return squared_distances[a] != squared_distances[b]
                                        ? squared_distances[a] < squared_distances[b]
                                        : a < b;
                         });
        others.resize(count);
    }
    return others;
}

}  // namespace

void dense_conditional_affinities(const double* points,
                                  std::size_t point_count,
                                  std::size_t dims,
                                  double* P,
                                  double perplexity,
                                  const FitNotes& notes) {
    for_each_row({points, point_count, dims},
                 notes,
                 [=](std::size_t n, std::span<const double> squared_distances) {
                     calibrate_row(n, squared_distances, perplexity, P + n * point_count);
                 });
}

void dense_multiscale_affinities(MatrixView<const double> points,
                                 double* P,
                                 std::span<const double> perplexities,
                                 const FitNotes& notes) {
    const double share = 1.0 / static_cast<double>(perplexities.size());
    for_each_row(points, notes, [=](std::size_t n, std::span<const double> squared_distances) {
        double* const row = P + n * points.rows;
        std::vector<double> of_scale(points.rows);
        std::fill_n(row, points.rows, 0.0);
        for (const double perplexity : perplexities) {
            calibrate_row(n, squared_distances, perplexity, of_scale.data());
            for (std::size_t m = 0; m < points.rows; ++m) {
                row[m] += of_scale[m];
            }
        }
        for (std::size_t m = 0; m < points.rows; ++m) {
            row[m] *= share;
        }
    });
}

void dense_uniform_affinities(MatrixView<const double> points,
                              double* P,
                              std::size_t neighbour_count,
                              const FitNotes& notes) {
    for_each_row(points, notes, [=](std::size_t n, std::span<const double> squared_distances) {
        double* const row = P + n * points.rows;
        const std::vector<std::uint32_t> nearest =
            nearest_others(n, squared_distances, neighbour_count);
        std::fill_n(row, points.rows, 0.0);
        for (const std::uint32_t m : nearest) {
            row[m] = 1.0 / static_cast<double>(nearest.size());
        }
        row[n] = DBL_MIN;
    });
}

}  // namespace ovik
