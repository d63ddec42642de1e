#pragma once

#include <cstddef>

#include "util/instruction_set.h"

namespace ovik {

/// Points whose distances from all others are known to the index.
constexpr std::size_t kPivots = 16;

/// What the distances of points from the pivots tell about the distances between points.
struct PivotKernels {
    /// Whether the triangle inequality keeps some points beyond a radius of a target.
    ///
    /// @param bounds  the least distances of the points from each pivot, then the greatest
    /// @param target  the distances of the target from each pivot
    bool (*is_beyond)(const double* bounds, const double* target, double radius);
};

const PivotKernels& pivot_kernels(InstructionSet instructions);

}  // namespace ovik
