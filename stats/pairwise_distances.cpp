#include "stats/pairwise_distances.h"

#include "stats/point_columns.h"
#include "util/parallel.h"

namespace ovik {

void squared_distance_matrix(const double* points,
                             std::size_t point_count,
                             std::size_t dims,
                             double* distances) {
    const PointColumns columns(points, point_count, dims);
    parallel_for_each(point_count, 1, [&](std::size_t n) {
        columns.squaredDistancesFrom(n, distances + n * point_count);
    });
}

}  // namespace ovik
