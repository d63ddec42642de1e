#include "util/plain_text.h"

#include <algorithm>

namespace ovik {

namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";  // U+FFFD
constexpr const char* kEllipsis = "\xE2\x80\xA6";     // U+2026

bool is_continuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

/// The range of the second byte is narrower after some first bytes: no overlong forms, no
/// surrogates, nothing above U+10FFFF.
bool is_second_byte(unsigned char first, unsigned char second) {
    switch (first) {
        case 0xE0U:
            return second >= 0xA0U && second <= 0xBFU;
        case 0xEDU:
            return second >= 0x80U && second <= 0x9FU;
        case 0xF0U:
            return second >= 0x90U && second <= 0xBFU;
        case 0xF4U:
            return second >= 0x80U && second <= 0x8FU;
        default:
            return is_continuation(second);
    }
}

/// Bytes of the character that opens with this byte; 0 if none does.
std::size_t sequence_length(unsigned char first) {
    if (first < 0x80U) {
        return 1;
    }
    if (first >= 0xC2U && first <= 0xDFU) {
        return 2;
    }
    if ((first & 0xF0U) == 0xE0U) {
        return 3;
    }
    return first >= 0xF0U && first <= 0xF4U ? 4 : 0;
}

/// Length of the valid character at the start of the text; 0 if there is none.
std::size_t character_length(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t length = sequence_length(byte(0));
    if (length > text.size() || (length > 1 && !is_second_byte(byte(0), byte(1)))) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if (!is_continuation(byte(i))) {
            return 0;
        }
    }
    return length;
}

/// Whether a character is a C0 or C1 control or DEL.
bool is_control(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    return first < 0x20U || first == 0x7FU ||
           (first == 0xC2U && static_cast<unsigned char>(character[1]) < 0xA0U);
}

}  // namespace

std::string one_line_utf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = character_length(text);
        if (length == 0) {
            result += kReplacement;
        } else if (is_control(text.substr(0, length))) {
            result += ' ';
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::size_t character_count(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return !is_continuation(static_cast<unsigned char>(c));
    }));
}

std::string shortened(const std::string& text, std::size_t length) {
    if (character_count(text) <= length) {
        return text;
    }
    std::size_t kept = 0;
    for (std::size_t characters = 1; characters < length; ++characters) {
        do {
            ++kept;
        } while (is_continuation(static_cast<unsigned char>(text[kept])));
    }
    return text.substr(0, kept) + kEllipsis;
}

}  // namespace ovik
