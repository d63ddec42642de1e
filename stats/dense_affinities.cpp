#include "stats/dense_affinities.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "neighbours/neighbour_lists.h"
#include "stats/bandwidth_search.h"
#include "stats/pairwise_distances.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kBandwidthAttempts = 500;

/// Writes the affinities of row n to all others under one perplexity.
void calibrate_row(std::size_t n,
                   std::span<const double> squared_distances,
                   double perplexity,
                   const Elementary& elementary,
                   double* row) {
    const auto fill = [=, &elementary](double beta) {
        for (std::size_t m = 0; m < squared_distances.size(); ++m) {
            row[m] = (-beta) * squared_distances[m];
        }
        elementary.exponentials(row, squared_distances.size());
        row[n] = DBL_MIN;
    };
    calibrate_similarities(
        {squared_distances, row, n}, perplexity, kBandwidthAttempts, 1.0, elementary.log, fill);
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

/// @param squared_distances  of all pairs of N points
void fill_rows(const double* squared_distances,
               std::size_t N,
               double* P,
               const DenseRow& fill_row) {
    parallel_for_each(N, 1, [&](std::size_t n) {
        fill_row(n, {squared_distances + n * N, N}, P + n * N);
    });
}

}  // namespace

DenseRow calibrated_row(std::vector<double> perplexities, const Elementary& elementary) {
    if (perplexities.size() == 1) {
        return [perplexity = perplexities.front(), &elementary](
                   std::size_t n, std::span<const double> squared_distances, double* row) {
            calibrate_row(n, squared_distances, perplexity, elementary, row);
        };
    }
    return [perplexities = std::move(perplexities), &elementary](
               std::size_t n, std::span<const double> squared_distances, double* row) {
        const std::size_t count = squared_distances.size();
        std::vector<double> of_scale(count);
        std::fill_n(row, count, 0.0);
        for (const double perplexity : perplexities) {
            calibrate_row(n, squared_distances, perplexity, elementary, of_scale.data());
            for (std::size_t m = 0; m < count; ++m) {
                row[m] += of_scale[m];
            }
        }
        const double share = 1.0 / static_cast<double>(perplexities.size());
        for (std::size_t m = 0; m < count; ++m) {
            row[m] *= share;
        }
    };
}

DenseRow uniform_row(std::size_t neighbour_count) {
    return
        [neighbour_count](std::size_t n, std::span<const double> squared_distances, double* row) {
            const std::vector<std::uint32_t> nearest =
                nearest_others(n, squared_distances, neighbour_count);
            std::fill_n(row, squared_distances.size(), 0.0);
            for (const std::uint32_t m : nearest) {
                row[m] = 1.0 / static_cast<double>(nearest.size());
            }
            row[n] = DBL_MIN;
        };
}

void dense_conditional_affinities(MatrixView<const double> points,
                                  double* P,
                                  const DenseRow& fill_row,
                                  const FitNotes& notes) {
    const std::size_t N = points.rows;
    const auto distances = malloc_array<double>(N * N);
    require_allocated(distances);
    tell(notes, FitNote::DistancesBegin);
    squared_distance_matrix(points.values, N, points.columns, distances.get());
    tell(notes, FitNote::DistancesDone);
    fill_rows(distances.get(), N, P, fill_row);
}

void dense_affinities_of_distances(MatrixView<const double> distances,
                                   double* P,
                                   const DenseRow& fill_row,
                                   const FitNotes& notes) {
    const std::size_t N = distances.rows;
    const auto squares = malloc_array<double>(N * N);
    require_allocated(squares);
    tell(notes, FitNote::DistancesBegin);
    const double scale = distance_scale(distances.all());
    parallel_for_each(N, 1, [&](std::size_t n) {
        const std::span<const double> row = distances.row(n);
        for (std::size_t m = 0; m < N; ++m) {
            const double distance = std::max(row[m], 0.0) * scale;
            squares[n * N + m] = distance * distance;
        }
        // What rounding may have left there is no distance.
        squares[n * N + n] = 0.0;
    });
    tell(notes, FitNote::DistancesDone);
    fill_rows(squares.get(), N, P, fill_row);
}

void dense_conditional_affinities(const double* points,
                                  std::size_t point_count,
                                  std::size_t dims,
                                  double* P,
                                  double perplexity,
                                  const FitNotes& notes) {
    dense_conditional_affinities(
        {points, point_count, dims}, P, calibrated_row({perplexity}, platform_elementary()), notes);
}

}  // namespace ovik
