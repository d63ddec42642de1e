#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "input/inspected_matrix.h"

namespace ovik {

/// Leaves rows of a matrix out, and what belongs to them.
///
/// @param is_left_out  asked once for each row, by its number from 0, in their order
/// @param matrix       `values` is not null; rows, names, lines and marks follow
/// @param labels       one per row, or empty; they follow
void leave_rows_out(const std::function<bool(std::size_t row)>& is_left_out,
                    InspectedMatrix& matrix,
                    std::vector<std::string>& labels);

}  // namespace ovik
