#include "stats/point_columns.h"

#include "stats/kernels/pair_kernels.h"

namespace ovik {

static_assert(kPanelWidth % kColumnMultiple == 0);

PointColumns::PointColumns(const double* points,
                           std::size_t point_count,
                           std::size_t dims,
                           const Metric& metric)
    : squared_distances_(metric.kernels(instruction_set()).squared_distances),
      point_count_(point_count),
      stride_(padded_to_panels(point_count)),
      dims_(dims),
      columns_(calloc_array<double>(stride_ * dims)) {
    require_allocated(columns_);
    for (std::size_t n = 0; n < point_count; ++n) {
        for (std::size_t d = 0; d < dims; ++d) {
            columns_[d * stride_ + n] = points[n * dims + d];
        }
    }
}

void PointColumns::squaredDistancesFrom(std::size_t n, double* distances) const {
    squared_distances_({columns_.get(), point_count_, stride_, dims_}, n, distances);
    distances[n] = 0.0;
}

}  // namespace ovik
