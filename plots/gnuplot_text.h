#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ovik {

/// A text, byte for byte, as an expression of gnuplot's.
std::string gnuplot_text(std::string_view text);

/// A text from the data as such an expression: one line of valid UTF-8, shortened.
///
/// @param length  characters at most, at least 1
std::string gnuplot_line(const std::string& text, std::size_t length);

}  // namespace ovik
