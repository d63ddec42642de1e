#pragma once

#include <cstddef>
#include <string>

#include "input/matrix_source.h"

/// What the first bytes of a file tell of whether it is text.

namespace ovik {

/// @throws InputError if a text is empty or all blank, or its head has a NUL byte or no line feeds
/// between its lines
void check_text_head(const MatrixSource& source);

/// @param name  of the file
/// @param line  of it, from 1
/// @throws InputError always: a line with a NUL byte is no text
[[noreturn]] void refuse_nul_byte(const std::string& name, std::size_t line);

}  // namespace ovik
