#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "util/matrix_check.h"

namespace ovik::tool {

/// Refuses a matrix that cannot be embedded.
///
/// @throws InputError with the first line, row and cure: no numbers, rows of unequal length, fewer
/// than 3 rows, values that are not finite, rows all equal
void check_matrix(const std::string& path, const MatrixReport& report);

/// What the user should know of a matrix that can be embedded, a text each: fields that read as 0,
/// text that is ignored, duplicate names, a first line that looks like data.
std::vector<std::string> matrix_warnings(const std::string& path, const MatrixReport& report);

/// Reads one label per line; a carriage return at the end of a line is not part of it.
///
/// @throws InputError if the file cannot be read or does not hold `row_count` lines
std::vector<std::string> read_labels(const std::string& path, std::size_t row_count);

/// Refuses to let a checkpoint replace what is not one, such as a matrix.
///
/// @throws InputError if there is something else than a checkpoint or an empty file
void check_checkpoint_path(const std::string& path);

}  // namespace ovik::tool
