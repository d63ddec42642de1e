#pragma once

#include <cstddef>

#include "util/instruction_set.h"

namespace ovik {

/// Points of a block.
constexpr std::size_t kBlockPoints = 16;

/// Targets that are measured together, while a block is at hand.
constexpr std::size_t kTargets = 4;

/// Writes the Euclidean distances of some targets from the points of a block; each square is added
/// in coordinate order, as in `euclidean_distance`.
///
/// @param block      dims x kBlockPoints
/// @param targets    kTargets pointers to dims values each
/// @param distances  kTargets x kBlockPoints values
using BlockDistances = void (*)(const double* block,
                                const double* const* targets,
                                std::size_t dims,
                                double* distances);

/// Points whose distances from all others are known to the index.
constexpr std::size_t kPivots = 16;

/// Whether the triangle inequality keeps some points beyond a radius.
///
/// @param bounds  the least distances of the points from each pivot, then the greatest
/// @param target  the distances of the target from each pivot
using BeyondRadius = bool (*)(const double* bounds, const double* target, double radius);

struct BlockKernels {
    BlockDistances measure;
    BeyondRadius is_beyond;
};

BlockKernels block_kernels(InstructionSet instructions);

}  // namespace ovik
