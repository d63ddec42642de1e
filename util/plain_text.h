#pragma once

#include <string>
#include <string_view>

namespace ovik {

/// The text as one line of valid UTF-8: a control character becomes a blank, a byte that is not
/// part of valid UTF-8 becomes U+FFFD.
std::string one_line_utf8(std::string_view text);

/// At most `length` characters of a valid UTF-8 text; a longer one ends in an ellipsis.
///
/// @param length  at least 1
std::string shortened(const std::string& text, std::size_t length);

/// Number of characters (code points) of a valid UTF-8 text.
std::size_t character_count(std::string_view text);

}  // namespace ovik
