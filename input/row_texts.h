#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ovik {

/// Reads one text per line, such as labels; a carriage return at the end of a line is not part of
/// it.
///
/// @param what  one of them is, for messages: "label"
/// @throws InputError if the file cannot be read or does not hold `row_count` lines
std::vector<std::string> read_row_texts(const std::string& path,
                                        std::size_t row_count,
                                        const std::string& what);

}  // namespace ovik
