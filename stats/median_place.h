#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "neighbours/neighbour_graph.h"
#include "stats/median.h"
#include "util/matrix_view.h"

namespace ovik {

/// So many nearest neighbours decide where a row starts that has no place of its own.
constexpr std::size_t kPlacingNeighbours = 25;

/// Finds the nearest neighbours of a row that have a place, `kPlacingNeighbours` at most.
///
/// @param graph      neighbours of the rows, nearest first
/// @param looked_at  how many of them are looked at, all if there are fewer
/// @param has_place  tells whether a row has one
/// @param placed     written
template <typename HasPlace>
void find_placed_neighbours(const NeighbourGraph& graph,
                            std::size_t row,
                            std::size_t looked_at,
                            const HasPlace& has_place,
                            std::vector<std::uint32_t>& placed) {
    placed.clear();
    const std::size_t begin = row * graph.neighbour_count;
    const std::size_t end = begin + std::min(looked_at, graph.neighbour_count);
    for (std::size_t i = begin; i < end && placed.size() < kPlacingNeighbours; ++i) {
        if (has_place(graph.neighbours[i])) {
            placed.push_back(graph.neighbours[i]);
        }
    }
}

/// Writes the median place of some rows, coordinate by coordinate; of an even number of values the
/// mean of the two in the middle.
///
/// @param rows    one or more
/// @param values  scratch
inline void write_median_place(MatrixView<const double> places,
                               std::span<const std::uint32_t> rows,
                               std::vector<double>& values,
                               std::span<double> median_place) {
    for (std::size_t d = 0; d < places.columns; ++d) {
        values.clear();
        for (const std::uint32_t row : rows) {
            values.push_back(places.row(row)[d]);
        }
        median_place[d] = median(values);
    }
}

}  // namespace ovik
