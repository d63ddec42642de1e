#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ovik {

/// The nearest neighbours of every row of a matrix. Row n has `neighbour_count` of them, the
/// nearest first, from n * neighbour_count on.
///
/// A row that has fewer (its distances are not finite, or there are not enough rows) is filled up
/// with itself at an infinite distance.
struct NeighbourGraph {
    std::size_t rows = 0;
    std::size_t neighbour_count = 0;
    /// The neighbours, as numbers of rows.
    std::vector<std::uint32_t> neighbours;
    /// The distances to these neighbours.
    std::vector<double> distances;
};

}  // namespace ovik
