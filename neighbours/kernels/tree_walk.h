#pragma once

#include <cstddef>
#include <cstdint>

#include "util/instruction_set.h"

namespace ovik {

/// A cell of a space-partitioning tree; cells stand in depth-first order, each before its children.
struct TreeCell {
    /// The largest squared distance from which the cell is opened, by the `theta` that the tree is
    /// built for; infinite if it is opened from everywhere, below zero in a leaf, which never is.
    double squared_reach;
    /// Number of the points in the cell.
    double weight;
    /// Positions in Morton order: of its first point, and the one behind its last.
    std::uint32_t first;
    std::uint32_t last;
    /// Number of cells of its subtree, itself included: what follows it is `skip` cells on. A leaf
    /// has 1.
    std::uint32_t skip;
    /// A number that no cell around this one has, unless the tree is `is_deep`.
    std::uint8_t rank;
    /// The rank of the cell around it.
    std::uint8_t parent;
};

/// Ranks of cells are below this one.
constexpr std::size_t kRanks = 256;
/// The rank of all leaves, which have no cells within.
constexpr std::uint8_t kLeafRank = 255;
/// In the place of the rank of a cell around the root.
constexpr std::uint8_t kAboveRoot = 254;

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
    /// Of the cells but the leaves.
    const double* squared_sides;
    /// The largest size of a coordinate; infinite if one is not finite.
    double reach;
    /// Whether more cells lie within one another than there are ranks.
    bool is_deep;
};

/// Writes the repulsive forces on some points, and their terms of the normalisation Z.
///
/// @param tree    not deep, with a reach below `kMostReach`
/// @param begin   the points stand at `begin` to `end` - 1 in Morton order
/// @param neg_f   row-major, N x dims; the rows of these points are written
/// @param shares  N values; those of these points are written
using TreeWalk = void (*)(
    const TreeView& tree, std::size_t begin, std::size_t end, double* neg_f, double* shares);

/// Below it no number on the walk overflows, and 1 + squared distance is below 2^210.
constexpr double kMostReach = 0x1p100;

/// Points that walk the tree together in every instruction set: a good size for the shares of
/// threads is a multiple of twice as many.
constexpr std::size_t kWalkBatch = 16;

/// The walk in two and in three dimensions.
struct WalkKernels {
    TreeWalk in_plane;
    TreeWalk in_space;
};

const WalkKernels& walk_kernels(InstructionSet instructions);

}  // namespace ovik
