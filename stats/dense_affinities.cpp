#include "stats/dense_affinities.h"

#include <cfloat>
#include <cmath>

#include <glog/logging.h>

#include "stats/bandwidth_search.h"
#include "stats/pairwise_distances.h"
#include "util/console.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kBandwidthAttempts = 500;

/// Logs the bare perplexity. Readers of the logs know the two places by these lines of the unit, so
/// they are stated and do not follow the source.
void log_perplexity(int line, double perplexity) {
    if (!console_is_silent) {
        google::LogMessage("stats/tsne", line, google::GLOG_INFO).stream() << perplexity;
    }
}

}  // namespace

void dense_conditional_affinities(
    const double* points, std::size_t point_count, std::size_t dims, double* P, double perplexity) {
    const auto distances = malloc_array<double>(point_count * point_count);
    exit_unless_allocated(distances);
    log_perplexity(639, perplexity);
    squared_distance_matrix(points, point_count, dims, distances.get());
    log_perplexity(641, perplexity);
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
            row_distances, row, point_count, perplexity, kBandwidthAttempts, fill);
    });
}

}  // namespace ovik
