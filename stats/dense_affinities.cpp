#include "stats/dense_affinities.h"

#include <cfloat>
#include <cmath>

#include "stats/bandwidth_search.h"
#include "stats/pairwise_distances.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kBandwidthAttempts = 500;

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
    parallel_for_each(point_count, 1, [&](std::size_t n) {
        const double* const row_distances = distances.get() + n * point_count;
        double* const row = P + n * point_count;
        const auto fill = [=](double beta) {
            for (std::size_t m = 0; m < point_count; ++m) {
                row[m] = std::exp((-beta) * row_distances[m]);
            }
            row[n] = DBL_MIN;
        };
        calibrate_similarities(
            {{row_distances, point_count}, row, n}, perplexity, kBandwidthAttempts, 1.0, fill);
    });
}

}  // namespace ovik
