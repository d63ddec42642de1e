#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
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
    /// The distances to these neighbours; none where they were not wanted.
    std::vector<double> distances;
};

/// Room for as many neighbours of each row, filled up as where there are none.
inline NeighbourGraph graph_without_neighbours(std::size_t rows,
                                               std::size_t neighbour_count,
                                               bool has_distances = true) {
    NeighbourGraph graph{rows, neighbour_count, {}, {}};
    if (has_distances) {
        graph.distances.assign(rows * neighbour_count, std::numeric_limits<double>::infinity());
    }
    graph.neighbours.reserve(rows * neighbour_count);
    for (std::size_t n = 0; n < rows; ++n) {
        graph.neighbours.insert(
            graph.neighbours.end(), neighbour_count, static_cast<std::uint32_t>(n));
    }
    return graph;
}

}  // namespace ovik
