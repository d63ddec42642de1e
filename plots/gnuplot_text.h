#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ovik {

/// A text, byte for byte, as an expression of gnuplot's.
std::string gnuplot_text(std::string_view text);

/// What a picture is to show of a text, as such an expression. Where no font may have a character,
/// the expression asks `fonts_have`, which one of the scripts below defines.
///
/// @param text  valid UTF-8, one line
std::string gnuplot_shown_text(std::string_view text);

/// Defines `fonts_have` for pictures in pixels: question marks stand for unusual characters in a
/// row if no font of the machine has all of them. Gnuplot would draw a box for each, as large as
/// the picture.
std::string gnuplot_font_search();

/// Defines `fonts_have` for pictures whose viewer has fonts of his own.
std::string gnuplot_any_font();

/// A text from the data as such an expression to be shown: one line of valid UTF-8, shortened.
///
/// @param length  characters at most, at least 1
std::string gnuplot_line(const std::string& text, std::size_t length);

}  // namespace ovik
