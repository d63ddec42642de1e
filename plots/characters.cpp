#include "plots/characters.h"

#include <cstddef>

namespace ovik {

std::vector<std::string_view> characters_of(std::string_view text) {
    std::vector<std::string_view> characters;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = start + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
            ++end;
        }
        characters.push_back(text.substr(start, end - start));
        start = end;
    }
    return characters;
}

std::uint32_t code_of(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) {
        return first;
    }
    std::uint32_t code = first & (0x7FU >> character.size());
    for (const char c : character.substr(1)) {
        code = code << 6U | (static_cast<unsigned char>(c) & 0x3FU);
    }
    return code;
}

}  // namespace ovik
