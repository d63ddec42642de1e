#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "input/inspected_matrix.h"
#include "util/matrix_view.h"

namespace ovik {

/// What messages about a matrix of distances call it and its rows.
struct DistanceWords {
    /// What they open with; empty, or such as "m.tsv".
    std::string source;
    /// Of the rows; or none.
    std::span<const std::string> names = {};
    /// The lines on which rows stand in the file, 0 where there is none; or empty.
    std::span<const std::size_t> lines = {};
    /// From what rows and columns are counted.
    std::size_t first = 0;
};

/// Refuses what is no matrix of distances: square, its values finite, not negative, at most 1e300
/// and not all below 1e-300, the diagonal 0, the same both ways. What rounding may leave is passed
/// over: 1e-10 of the largest distance, and 1e-6 on the diagonal. Refused is, too, a
/// distance beside which the others are as good as 0 (`util/comparable_distance.h`).
///
/// @throws InputError with row, column, the values and the cure
void check_distance_matrix(MatrixView<const double> distances, const DistanceWords& words);

/// The same for a matrix from a file, whose columns, where they have names, are to have those of
/// the rows in their order.
///
/// @param matrix  NaN is a missing value, which is refused
void check_distance_matrix(const std::string& path, const InspectedMatrix& matrix);

}  // namespace ovik
