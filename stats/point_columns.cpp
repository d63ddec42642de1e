#include "stats/point_columns.h"

#include <algorithm>

namespace ovik {

PointColumns::PointColumns(const double* points, std::size_t point_count, std::size_t dims)
    : point_count_(point_count),
      dims_(dims),
      columns_(malloc_array<double>(point_count * dims)) {
    require_allocated(columns_);
    for (std::size_t n = 0; n < point_count; ++n) {
        for (std::size_t d = 0; d < dims; ++d) {
            columns_[d * point_count + n] = points[n * dims + d];
        }
    }
}

void PointColumns::squaredDistancesFrom(std::size_t n, double* distances) const {
    std::fill_n(distances, point_count_, 0.0);
    for (std::size_t d = 0; d < dims_; ++d) {
        const double* const coordinates = column(d);
        const double own = coordinates[n];
        for (std::size_t m = 0; m < point_count_; ++m) {
            const double difference = own - coordinates[m];
            distances[m] += difference * difference;
        }
    }
    distances[n] = 0.0;
}

}  // namespace ovik
