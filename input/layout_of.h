#pragma once

#include "input/load_options.h"
#include "input/matrix_source.h"
#include "input/table_layout.h"

namespace ovik {

/// The layout of a delimited text: one of those that are known, changed as the options say.
///
/// @param source  its head grows as far as it has to
/// @throws InputError with the cure: there is nothing like a matrix, a row stands in the place of
/// the header, a column that the options name is not there
TableLayout layout_of(MatrixSource& source, const LoadOptions& options);

}  // namespace ovik
