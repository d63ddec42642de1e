#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "neighbours/near_row.h"
#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// Neighbours of every row of a matrix that came from elsewhere than a search: each row has as many
/// as it has.
struct NeighbourLists {
    /// Where the neighbours of each row begin, and where the last ones end.
    std::vector<std::size_t> starts = {0};
    /// By distance, and at equal distance by row. No row is its own neighbour. Distances are
    /// multiplied by the power of two that brings the largest of all into [0.5, 1).
    std::vector<NearRow> nearest;

    [[nodiscard]] std::size_t rowCount() const { return starts.size() - 1; }

    [[nodiscard]] std::span<const NearRow> of(std::size_t row) const {
        return std::span(nearest).subspan(starts[row], starts[row + 1] - starts[row]);
    }
};

/// A neighbour of a row, as it is given.
struct GivenNeighbour {
    /// From 0.
    std::size_t row = 0;
    std::size_t neighbour = 0;
    double distance = 0.0;
    /// The line of the file where it stands, from 1; 0 without a file.
    std::size_t line = 0;
};

/// Brings neighbours into lists. A row as its own neighbour at distance 0 is passed over.
/// Neighbours need not be mutual, and distances of 0 are those of rows that do not differ.
///
/// @param given      in any order
/// @param row_count  of the matrix
/// @param source     what messages call where they are from; rows are counted from 1 where lines
///                   are given, else from 0
/// @throws InputError with place and cure: a row that there is not; a distance that is negative, or
/// no finite number, or larger than 1e300; a row at a distance from itself; a neighbour that is
/// given twice; two rows that are each other's neighbours at distances that differ by more than a
/// 10^-4 of the larger one; a row without neighbours; distances that are all 0, or below 1e-300;
/// one beside which the others are as good as 0 (`util/comparable_distance.h`)
OVIK_API NeighbourLists neighbour_lists(std::vector<GivenNeighbour> given,
                                        std::size_t row_count,
                                        const std::string& source);

/// The `count` nearest of each row by a matrix of distances, all if there are fewer. Distances that
/// are not finite are those of no neighbours; negative ones count as 0. The same for any number of
/// threads.
///
/// @param distances  square; row n has the distances of the others from n
NeighbourLists nearest_by_distance(MatrixView<const double> distances, std::size_t count);

/// The power of two that brings the largest distance into [0.5, 1); 1 if none is above 0. Those
/// that are not finite do not count.
double distance_scale(std::span<const double> distances);

}  // namespace ovik
