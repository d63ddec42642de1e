#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

/// Loops over the distances of one point to all others, compiled once per instruction set and
/// chosen when the program runs. Every version gives the same bits.

namespace ovik {

/// Distances are padded with infinity to a multiple of this.
constexpr std::size_t kRankMultiple = 8;

/// A version of the loops. Distances are `padded_count` numbers, none NaN; that of the point itself
/// is infinity.
struct RankKernels {
    /// The `count` nearest points, the nearest first; of those equally far the one of the smallest
    /// number. There are more than `count` points.
    ///
    /// @param count              at least 1
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
