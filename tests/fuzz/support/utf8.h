#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// UTF-8 by decoding it, as a yardstick for the library, which goes by the ranges of the bytes.

namespace ovik::test {

/// A character of a text; `length` 0 stands for a byte that is part of none.
struct Utf8Character {
    std::uint32_t code = 0;
    std::size_t length = 0;
};

/// The character that opens a text, which is not empty.
inline Utf8Character first_character(std::string_view text) {
    const std::uint32_t first = static_cast<unsigned char>(text[0]);
    if (first < 0x80U) {
        return {first, 1};
    }
    // The leading ones of the first byte count the bytes.
    std::size_t length = 0;
    while (length < 8 && (first << length & 0x80U) != 0) {
        ++length;
    }
    if (length < 2 || length > 4 || text.size() < length) {
        return {};
    }
    std::uint32_t code = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const std::uint32_t byte = static_cast<unsigned char>(text[i]);
        if (byte >> 6U != 2U) {
            return {};
        }
        code = code << 6U | (byte & 0x3FU);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool is_surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < kSmallest[length] || is_surrogate || code > 0x10FFFF) {
        return {};
    }
    return {code, length};
}

inline bool is_valid_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = first_character(text).length;
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

/// The characters of a text; bytes that are part of none are left out.
inline std::vector<std::uint32_t> code_points(std::string_view text) {
    std::vector<std::uint32_t> codes;
    while (!text.empty()) {
        const auto [code, length] = first_character(text);
        if (length > 0) {
            codes.push_back(code);
        }
        text.remove_prefix(length > 0 ? length : 1);
    }
    return codes;
}

/// The text as one line of valid UTF-8: blanks for the control characters, U+FFFD for every byte
/// that is part of no character.
inline std::string plain_line(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const auto [code, length] = first_character(text);
        const bool is_control = code < 0x20 || (code >= 0x7F && code < 0xA0);
        if (length == 0) {
            line += "\xEF\xBF\xBD";
        } else if (is_control) {
            line += ' ';
        } else {
            line += text.substr(0, length);
        }
        text.remove_prefix(length > 0 ? length : 1);
    }
    return line;
}

}  // namespace ovik::test
