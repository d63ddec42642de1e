#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

namespace ovik {

/// Of each point: two of forces and one of the normalisation.
constexpr std::size_t kFarSums = 3;

/// Points are taken by multiples of this.
constexpr std::size_t kFarGroup = 8;

/// Where a point lies.
struct FarPlace {
    double x;
    double y;
};

/// Points, by their coordinates.
struct FarTargets {
    const double* x;
    const double* y;
    /// A multiple of kFarGroup.
    std::size_t count;
};

/// Repulsion between points and others that lie far out.
struct FarPairs {
    /// With d the point less the far point, and q = 1 / (1 + (dx^2 + dy^2)), sums q^2 * d and q.
    ///
    /// @param scale      at most 2^50
    /// @param of_points  kFarSums rows, one after the other, of a number for each point; written:
    ///                   its sums over the far points, in their order
    /// @param of_far     kFarSums numbers for each far point; to each is added, for all points, a
    ///                   term times `scale`, rounded to the nearest whole number and to even
    void (*sum)(const FarTargets& points,
                const FarPlace* far,
                std::size_t far_count,
                double scale,
                double* of_points,
                std::int64_t* of_far);
};

const FarPairs& far_pairs(InstructionSet instructions);

}  // namespace ovik
