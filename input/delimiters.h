#pragma once

#include <optional>
#include <string>

#include "input/inspected_matrix.h"
#include "input/matrix_source.h"

namespace ovik {

/// What stands between the fields of a file: as it is read, and as its first rows look.
struct Delimiters {
    char used = '\t';
    std::optional<char> guessed;
};

/// @param given  by the user
/// @throws InputError if nothing is given and nothing can be guessed
Delimiters find_delimiter(const MatrixSource& source, std::optional<char> given);

/// Refuses text that its delimiter does not part into names and numbers.
///
/// @throws InputError with the cure: a name got lost to the trimming, or there is no number
void check_delimited(const std::string& path,
                     const Delimiters& delimiters,
                     const MatrixReport& report);

}  // namespace ovik
