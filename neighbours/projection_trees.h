#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "neighbours/metric.h"

namespace ovik {

/// What is told of a random-projection tree: the rows of each leaf. Workers call side by side.
using VisitLeaf = std::function<void(std::span<const std::uint32_t> rows, std::size_t worker)>;

/// Grows a random-projection tree over the rows of a matrix, which are halved, by their projections
/// on the way between two random ones, until as many are left as a leaf may have. Visits its
/// leaves; the tree itself is not kept.
///
/// @param points     row-major, N x dims, all distances finite
/// @param tree       trees of different numbers are drawn apart, of the same number are the same
/// @param most_rows  of a leaf, at least 1
/// @complexity O(N log N) distances; 28 bytes of scratch memory a row
/// @par Source Dasgupta and Freund, "Random projection trees and low dimensional manifolds", STOC
/// 2008
void visit_projection_tree(const double* points,
                           std::size_t N,
                           std::size_t dims,
                           const Metric& metric,
                           std::uint64_t tree,
                           std::size_t most_rows,
                           const VisitLeaf& visit);

}  // namespace ovik
