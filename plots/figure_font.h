#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace ovik {

/// The font of a figure's texts, as WOFF2 in base64: Latin, Greek and a few signs.
std::string_view figure_font_woff2();

/// How far a character advances, in thousandths of the font's size.
///
/// @param code  a code point
/// @return none if the font has no such character
std::optional<int> figure_font_advance(std::uint32_t code);

}  // namespace ovik
