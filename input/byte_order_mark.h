#pragma once

#include <string_view>

namespace ovik {

/// What some programs, Excel among them, write in front of UTF-8 text.
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

/// The text behind the mark, if it has one.
inline std::string_view without_byte_order_mark(std::string_view text) {
    text.remove_prefix(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    return text;
}

}  // namespace ovik
