#pragma once

#include <string>

#include "util/plain_text.h"

namespace ovik {

/// A text as a field of a tab-separated table: without tabs and line ends, which become blanks as
/// other control characters do. One that holds double quotes stands in double quotes, and those
/// within it are doubled.
inline std::string table_field(const std::string& text) {
    std::string line = one_line_utf8(text);
    if (line.find('"') == std::string::npos) {
        return line;
    }
    std::string quoted = "\"";
    for (const char c : line) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

}  // namespace ovik
