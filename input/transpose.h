#pragma once

#include <string>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/load_options.h"

namespace ovik {

/// Refuses columns whose names cannot be those of rows.
///
/// @param path     for messages
/// @param options  `spell` writes the cure; a file of names stands for those that are missing
/// @throws InputError if columns have no names, an empty one or one of another column; or if they
/// have names besides those of a file
void check_columns_as_rows(const std::string& path,
                           const LoadOptions& options,
                           const InspectedMatrix& matrix);

/// Makes rows of the columns and columns of the rows, values and names. The new rows stand on no
/// line; nothing is left of what the report told of lines and fields.
///
/// @param row_names  what the new rows are called, one per column
void transpose(InspectedMatrix& matrix, std::vector<std::string> row_names);

}  // namespace ovik
