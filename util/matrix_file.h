#pragma once

#include <cstddef>
#include <fstream>
#include <string>

namespace ovik {

/// Opens a matrix file for reading, at its start, after the checks that opening does not make.
///
/// @throws InputError if the file is missing or unreadable, no regular file, or no plain text:
/// compressed, a spreadsheet, UTF-16, with NUL bytes, or without line feeds between its lines. Only
/// the first bytes are looked at.
std::ifstream open_matrix_file(const std::string& path);

/// @param line  of the file, from 1
/// @throws InputError always: a line with a NUL byte is no text
[[noreturn]] void refuse_nul_byte(const std::string& path, std::size_t line);

}  // namespace ovik
