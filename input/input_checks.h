#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "input/matrix_check.h"

namespace ovik {

/// What stands between the fields of a file: as it is read, and as its first rows look.
struct Delimiters {
    char used = '\t';
    std::optional<char> guessed;
};

/// @param given  by the user
/// @throws InputError if nothing is given and nothing can be guessed
Delimiters find_delimiter(const MatrixSource& source, std::optional<char> given);

/// Refuses a file whose rows do not make a matrix.
///
/// @throws InputError with the first line, row and cure: no numbers, rows of unequal length, too
/// few rows, values that are not finite
void check_matrix(const std::string& path,
                  const Delimiters& delimiters,
                  const MatrixReport& report);

/// @throws InputError with the first value that is infinite
void check_finite(const std::string& path, const MatrixReport& report);

/// @throws InputError if there are fewer than 3 rows, or more than the engine can count
void check_row_count(const std::string& path, std::size_t rows);

/// Refuses values that cannot be embedded.
///
/// @param matrix  at least one row; no value is missing
/// @throws InputError with the cure: rows all equal, values too large or too close to one another
void check_values(const std::string& path, const InspectedMatrix& matrix);

/// What the user should know of a matrix that can be embedded, a text each: fields that read as 0,
/// text that is ignored, quoted and duplicate names, a first line that looks like data.
std::vector<std::string> matrix_warnings(const std::string& path, const MatrixReport& report);

/// Reads one text per line, such as labels; a carriage return at the end of a line is not part of
/// it.
///
/// @param what  one of them is, for messages: "label"
/// @throws InputError if the file cannot be read or does not hold `row_count` lines
std::vector<std::string> read_row_texts(const std::string& path,
                                        std::size_t row_count,
                                        const std::string& what);

/// Refuses to let a checkpoint replace what is not one, such as a matrix.
///
/// @throws InputError if there is something else than a checkpoint or an empty file
void check_checkpoint_path(const std::string& path);

}  // namespace ovik
