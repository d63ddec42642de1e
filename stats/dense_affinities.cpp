#include "stats/dense_affinities.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <span>

#include "neighbours/neighbour_lists.h"
#include "stats/bandwidth_search.h"
#include "stats/pairwise_distances.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kBandwidthAttempts = 500;

/// @param squared_distances  point_count x point_count
void fill_affinities(const double* squared_distances,
                     std::size_t point_count,
                     double* P,
                     double perplexity) {
    parallel_for_each(point_count, 1, [&](std::size_t n) {
        const double* const squares_of_row = squared_distances + n * point_count;
        double* const row = P + n * point_count;
        const auto fill = [=](double beta) {
            for (std::size_t m = 0; m < point_count; ++m) {
                row[m] = std::exp((-beta) * squares_of_row[m]);
            }
            row[n] = DBL_MIN;
        };
        calibrate_similarities(
            {{squares_of_row, point_count}, row, n}, perplexity, kBandwidthAttempts, 1.0, fill);
    });
}

}  // namespace

void dense_conditional_affinities(const double* points,
                                  std::size_t point_count,
                                  std::size_t dims,
                                  double* P,
                                  double perplexity,
                                  const FitNotes& notes) {
    const auto distances = malloc_array<double>(point_count * point_count);
    require_allocated(distances);
    tell(notes, FitNote::DistancesBegin);
    squared_distance_matrix(points, point_count, dims, distances.get());
    tell(notes, FitNote::DistancesDone);
    fill_affinities(distances.get(), point_count, P, perplexity);
}

void dense_affinities_of_distances(MatrixView<const double> distances,
                                   double* P,
                                   double perplexity,
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
    fill_affinities(squares.get(), N, P, perplexity);
}

}  // namespace ovik
