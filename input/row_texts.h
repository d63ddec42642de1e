#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ovik {

/// Reads one text per line, such as names, of a file that may be packed by gzip; a carriage return
/// at the end of a line, or a byte order mark in front of the first, is not part of it.
///
/// @param what  one of them is, for messages: "label"
/// @throws InputError if the file cannot be read, is no text or does not hold `row_count` lines
std::vector<std::string> read_row_texts(const std::string& path,
                                        std::size_t row_count,
                                        const std::string& what);

/// Reads the whole text of such a file, unpacked and without a byte order mark.
///
/// @throws InputError if the file cannot be opened or unpacked, or is no text
/// @throws std::system_error if it cannot be read to its end
std::string read_row_file(const std::string& path, const std::string& what);

/// The lines of a text, without the carriage returns at their ends.
std::vector<std::string> lines_of(const std::string& text);

/// The same as `read_row_texts`, from a text that has been read.
std::vector<std::string> row_texts_of(const std::string& text,
                                      const std::string& path,
                                      std::size_t row_count,
                                      const std::string& what);

}  // namespace ovik
