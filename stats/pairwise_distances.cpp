#include "stats/pairwise_distances.h"

#include "neighbours/metric.h"
#include "stats/point_columns.h"
#include "util/parallel.h"

namespace ovik {

void squared_distance_matrix(const double* points,
                             std::size_t point_count,
                             std::size_t dims,
                             double* distances) {
    squared_distance_matrix(points, point_count, dims, distances, euclidean_metric());
}

void squared_distance_matrix(const double* points,
                             std::size_t point_count,
                             std::size_t dims,
                             double* distances,
                             const Metric& metric) {
    require_measurable_rows(metric, points, point_count, dims);
    const PointColumns columns(points, point_count, dims, metric);
    parallel_for_each(point_count, 1, [&](std::size_t n) {
        columns.squaredDistancesFrom(n, distances + n * point_count);
    });
}

}  // namespace ovik
