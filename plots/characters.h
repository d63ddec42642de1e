#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace ovik {

/// The characters of a valid UTF-8 text, as parts of it.
std::vector<std::string_view> characters_of(std::string_view text);

/// The code point of one of them.
std::uint32_t code_of(std::string_view character);

}  // namespace ovik
