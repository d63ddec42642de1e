#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ovik {

/// How wide a text is in the font of the figures, in the unit of its size.
///
/// @param text  valid UTF-8, one line
double text_width(std::string_view text, double font_size);

/// Texts cut to a width, each in one line of valid UTF-8, so that different ones stay different: by
/// their ends, else in their middle, else with a number behind.
///
/// @param width  in the unit of the font's size; texts are no shorter than a few characters
std::vector<std::string> cut_distinctly(const std::vector<std::string>& texts,
                                        double font_size,
                                        double width);

}  // namespace ovik
