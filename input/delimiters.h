#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "input/load_options.h"

namespace ovik {

/// What stands between the fields of a file: as it is read, and as its first rows look.
struct Delimiters {
    char used = '\t';
    std::optional<char> guessed;
};

/// @param path         for messages
/// @param rows         the text behind the header
/// @param has_default  whether it is the tab if nothing is given and nothing can be guessed
/// @throws InputError if nothing is given and nothing can be guessed
Delimiters find_delimiter(const std::string& path,
                          std::string_view rows,
                          const LoadOptions& options,
                          bool has_default);

/// What messages call a delimiter, and options too: "tab".
std::string delimiter_text(char delimiter);

}  // namespace ovik
