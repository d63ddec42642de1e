#pragma once

#include <cstddef>

namespace ovik {

/// How many rows hold the same values as an earlier one.
///
/// @param values  row-major, rows x columns; no NaN
std::size_t count_duplicate_rows(const double* values, std::size_t rows, std::size_t columns);

}  // namespace ovik
