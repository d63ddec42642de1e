#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

namespace ovik {

/// A cell of a space-partitioning tree; cells stand in depth-first order, each before its children.
struct TreeCell {
    double squared_side;
    /// Number of the points in the cell.
    double weight;
    /// Position in Morton order of its first point.
    std::uint32_t first;
    /// Number of cells of its subtree, itself included: what follows it is `skip` cells on. A leaf
    /// has 1.
    std::uint32_t skip;
};

/// A finished tree, as the walk reads it.
struct TreeView {
    std::size_t dims;
    /// Points, row-major, in their own order.
    const double* data;
    /// Points in Morton order.
    const std::uint32_t* order;
    const TreeCell* cells;
    std::size_t cell_count;
    /// Centres of mass, row-major, cell_count x dims.
    const double* centres;
};

/// Writes the repulsive forces on some points, and their terms of the normalisation Z.
///
/// @param begin   the points stand at `begin` to `end` - 1 in Morton order
/// @param neg_f   row-major, N x dims; the rows of these points are written
/// @param shares  N values; those of these points are written
using TreeWalk = void (*)(const TreeView& tree,
                          double squared_theta,
                          std::size_t begin,
                          std::size_t end,
                          double* neg_f,
                          double* shares);

/// Points that walk the tree together in every instruction set: a good size for the shares of
/// threads is a multiple of it.
constexpr std::size_t kWalkBatch = 16;

/// The walk in two and in three dimensions.
struct WalkKernels {
    TreeWalk in_plane;
    TreeWalk in_space;
};

const WalkKernels& walk_kernels(InstructionSet instructions);

}  // namespace ovik
