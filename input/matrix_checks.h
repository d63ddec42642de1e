#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "input/inspected_matrix.h"

namespace ovik {

/// Fewer rows have no map.
inline constexpr std::size_t kLeastEmbeddedRows = 3;

/// Refuses a file whose rows do not make a matrix.
///
/// @param least_rows  how many rows there have to be: as many as a map needs, or 1
/// @throws InputError with the first line, row and cure: rows of unequal length, too few rows,
/// values that are not finite
void check_matrix(const std::string& path,
                  const MatrixReport& report,
                  std::size_t least_rows = kLeastEmbeddedRows);

/// @throws InputError if there are fewer rows than wanted, or more than the engine can count
void check_row_count(const std::string& path,
                     std::size_t rows,
                     std::size_t least_rows = kLeastEmbeddedRows);

/// Refuses values that cannot be embedded.
///
/// @param matrix  at least one row; no value is missing
/// @throws InputError with the cure: rows all equal, values too large or too close to one another
void check_values(const std::string& path, const InspectedMatrix& matrix);

/// What the user should know of a matrix that can be embedded, a text each: empty and duplicate
/// names.
std::vector<std::string> matrix_warnings(const std::string& path, const MatrixReport& report);

}  // namespace ovik
