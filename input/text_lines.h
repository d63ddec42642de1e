#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "util/line_blocks.h"

/// The lines of a text, and what trimming leaves out of them.

namespace ovik {

/// The lines of a text, without their "\n".
inline std::vector<std::string_view> line_views(std::string_view text) {
    std::vector<std::string_view> lines;
    for_each_line(text, [&](std::string_view line) { lines.push_back(line); });
    return lines;
}

/// The empty fields at the end of a line that splitting it once it is trimmed does not give.
///
/// @param trimmed  what trimming leaves of the line, part of it
inline std::size_t empty_fields_behind(std::string_view line,
                                       std::string_view trimmed,
                                       char delimiter) {
    const std::string_view behind =
        line.substr(static_cast<std::size_t>(trimmed.data() - line.data()) + trimmed.size());
    const auto delimiters = std::count(behind.begin(), behind.end(), delimiter);
    return static_cast<std::size_t>(delimiters) + (trimmed.ends_with(delimiter) ? 1 : 0);
}

/// The delimiters with which a line opens.
inline std::size_t delimiters_in_front(std::string_view line, char delimiter) {
    return std::min(line.find_first_not_of(delimiter), line.size());
}

}  // namespace ovik
