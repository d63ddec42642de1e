#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

/// Loops over the distances of one point to all others, compiled once per instruction set and
/// chosen when the program runs. Every version gives the same bits.

namespace ovik {

/// Points by coordinate: column d holds coordinate d of all points, padded to whole panels.
struct PaddedColumns {
    const double* coordinates;  ///< dims x padded_to_panels(point_count)
    std::size_t point_count;
    std::size_t dims;
};

/// A version of the loops. Distances are `padded_to_panels(point_count)` numbers, none NaN.
struct RankKernels {
    /// Squared distances of point n to all points, summed in order of the coordinates; infinity to
    /// itself and for the padding.
    void (*squared_distances)(const PaddedColumns& points, std::size_t n, double* distances);

    /// The `count` nearest points, the nearest first; of those equally far the one of the smallest
    /// number. There are more than `count` points.
    ///
    /// @param nearest_distances  room for `count` numbers
    void (*nearest)(const double* distances,
                    std::size_t padded_count,
                    std::size_t count,
                    std::uint32_t* nearest,
                    double* nearest_distances);

    /// How many points are nearer than a point, or as near with a smaller number.
    std::size_t (*rank)(const double* distances, std::size_t padded_count, std::size_t point);
};

/// The version for an instruction set of this build.
const RankKernels& rank_kernels(InstructionSet instructions);

}  // namespace ovik
