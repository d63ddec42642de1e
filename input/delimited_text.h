#pragma once

#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/matrix_source.h"

namespace ovik {

/// Reads the text of a matrix by the rules of `read_matrix_w_index` with one header line, on all
/// cores, and takes note of what that would not say, but for names that repeat.
///
/// It differs in this: a missing value is NaN instead of 0 (`FieldKind::Missing`), and so are empty
/// fields at the end of a line that trimming takes away, if other rows have values there.
///
/// @param source  read to its end
/// @throws InputError if a line holds a NUL byte, or the packed data are damaged
/// @throws std::system_error if the file cannot be read to its end
InspectedMatrix inspect_matrix(MatrixSource& source, char delimiter);

/// The same with the delimiter that the options give, or else the one that is guessed.
///
/// @throws InputError also if no delimiter parts numbers from names, or a name got lost
InspectedMatrix read_delimited_text(MatrixSource& source, const LoadOptions& options);

}  // namespace ovik
