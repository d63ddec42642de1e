#pragma once

#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/matrix_source.h"

namespace ovik {

/// Reads a matrix in the Matrix Market exchange format: dense ("array") or sparse ("coordinate"),
/// of real or whole numbers or of a pattern, general, symmetric or skew-symmetric. Entries that a
/// sparse one leaves out are 0; those that it repeats are added up. Rows have no names but those of
/// a directory of cells (`names_beside`): cells are then the rows of the matrix, whatever they are
/// in the file. A large sparse matrix stays sparse if the options want it to.
///
/// @param source  read to its end
/// @throws InputError with the line, if the file is not of this format; if the matrix does not fit
/// in memory
/// @throws std::system_error if the file cannot be read to its end
/// @par Source Boisvert, Pozo and Remington, "The Matrix Market Exchange Formats: Initial Design",
/// NISTIR 5935, 1996
InspectedMatrix read_matrix_market(MatrixSource& source, const LoadOptions& options);

}  // namespace ovik
