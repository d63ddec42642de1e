#pragma once

#include "input/inspected_matrix.h"
#include "input/matrix_source.h"

namespace ovik {

/// Reads a matrix in the Matrix Market exchange format: dense ("array") or sparse ("coordinate"),
/// of real or whole numbers or of a pattern, general, symmetric or skew-symmetric. Entries that a
/// sparse one leaves out are 0; those that it repeats are added up. Rows have no names.
///
/// @param source  read to its end
/// @throws InputError with the line, if the file is not of this format
/// @throws std::system_error if the file cannot be read to its end
/// @par Source Boisvert, Pozo and Remington, "The Matrix Market Exchange Formats: Initial Design",
/// NISTIR 5935, 1996
InspectedMatrix read_matrix_market(MatrixSource& source);

}  // namespace ovik
