#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "input/matrix_source.h"

/// What the first bytes of a file tell of whether it is text.

namespace ovik {

/// What a file is that is often taken for text, and what to do about it: a spreadsheet, a file that
/// is packed otherwise than by gzip, UTF-16. Empty for all others.
std::string foreign_format(std::string_view head);

/// @throws InputError if the head of a text has a NUL byte, or no line feeds between its lines
void check_text_head(const MatrixSource& source);

/// @param name  of the file
/// @param line  of it, from 1
/// @throws InputError always: a line with a NUL byte is no text
[[noreturn]] void refuse_nul_byte(const std::string& name, std::size_t line);

}  // namespace ovik
