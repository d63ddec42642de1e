#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

namespace ovik {

/// How many points a block holds.
constexpr std::size_t kBlockPoints = 16;

/// Targets that are measured together, while a block is at hand.
constexpr std::size_t kTargets = 4;

/// Writes the distances of some targets from the points of a block.
///
/// @param block      dims x kBlockPoints
/// @param targets    kTargets pointers to dims values each
/// @param distances  kTargets x kBlockPoints values
using BlockDistances = void (*)(const double* block,
                                const double* const* targets,
                                std::size_t dims,
                                double* distances);

/// Columns of points are padded to a multiple of this, so that whole vectors can be read.
constexpr std::size_t kColumnMultiple = 8;

/// Points by coordinate: coordinate d of point n stands at coordinates[d * stride + n].
struct PointsByColumn {
    const double* coordinates;
    std::size_t point_count;
    /// From one column to the next: at least point_count, a multiple of kColumnMultiple.
    std::size_t stride;
    std::size_t dims;
};

/// Writes the squared distances of point n from all points; what it writes at n has no meaning.
///
/// @param squared_distances  point_count values
using DistancesOfPoint = void (*)(const PointsByColumn& points,
                                  std::size_t n,
                                  double* squared_distances);

/// Writes the distances of a target from some rows of a matrix.
///
/// @param points     row-major, with `dims` columns
/// @param rows       count numbers of rows
/// @param distances  count values
using RowDistances = void (*)(const double* points,
                              std::size_t dims,
                              const double* target,
                              const std::uint32_t* rows,
                              std::size_t count,
                              double* distances);

/// The loops of a metric over many points, all of which have to give the bits of its distance of
/// two points.
struct MetricKernels {
    BlockDistances block_distances;
    DistancesOfPoint squared_distances;
    RowDistances row_distances;
};

}  // namespace ovik
