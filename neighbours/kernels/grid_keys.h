#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

namespace ovik {

/// The leading bits of a point's Morton code, and the point.
struct GridKey {
    std::uint64_t bits;
    std::uint32_t row;
};

/// A grid of 2^32 x 2^32 cells in the plane. What lies beyond it, and NaN, belongs to the last
/// cell; with a side of 0 all belongs to the first.
struct PlaneGrid {
    double low[2];
    double side;
};

/// Kernels over points in the plane, row-major.
struct GridKernels {
    /// Writes the least and the greatest coordinates of some points.
    ///
    /// @param low, high  2 values each; DBL_MAX and -DBL_MAX if there is no point
    /// @return whether all coordinates are finite; if not, nothing of use is written
    bool (*bounds)(const double* points, std::size_t count, double* low, double* high);

    /// Writes the whole Morton codes of some points: the bits of their cells, interleaved, that of
    /// the first dimension first.
    ///
    /// @param rows  of the points; `count` values
    void (*keys)(const double* points,
                 const std::uint32_t* rows,
                 std::size_t count,
                 const PlaneGrid& grid,
                 GridKey* keys);
};

const GridKernels& grid_kernels(InstructionSet instructions);

}  // namespace ovik
