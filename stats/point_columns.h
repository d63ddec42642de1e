#pragma once

#include <cstddef>

#include "neighbours/metric.h"
#include "util/malloc_array.h"

namespace ovik {

/// A column-major copy of N points, from which the distances of one point to all others are formed
/// side by side.
class PointColumns {
  public:
    /// @param points  row-major, point_count x dims
    /// @throws WorkMemoryError if the copy does not fit in memory
    PointColumns(const double* points,
                 std::size_t point_count,
                 std::size_t dims,
                 const Metric& metric = euclidean_metric());

    /// Squared distances of point n to every point.
    ///
    /// @param distances  point_count values; the one at n is set to 0.0
    void squaredDistancesFrom(std::size_t n, double* distances) const;

    /// Coordinate d of all points.
    [[nodiscard]] const double* column(std::size_t d) const { return columns_.get() + d * stride_; }

    [[nodiscard]] std::size_t pointCount() const { return point_count_; }

    [[nodiscard]] std::size_t dims() const { return dims_; }

  private:
    DistancesOfPoint squared_distances_;
    std::size_t point_count_;
    std::size_t stride_;
    std::size_t dims_;
    MallocArray<double> columns_;
};

}  // namespace ovik
