#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

/// The rules for one line of a matrix file: what is cut off its ends and where its fields lie.

namespace ovik {

/// Trims one line in place, in single passes per kind of character.
///
/// Front: tabs, then vertical tabs, then form feeds, then blanks; each kind in one run and in this
/// order only, so that a blank before a tab leaves the tab. Line feeds and carriage returns stay.
/// End: tabs, line feeds, vertical tabs, form feeds, carriage returns, blanks, likewise.
/// Last, the line is cut at its first NUL.
inline void trim_matrix_line(std::string& line) {
    std::size_t start = 0;
    for (const char kind : {'\t', '\v', '\f', ' '}) {
        while (start < line.size() && line[start] == kind) {
            ++start;
        }
    }
    std::size_t end = line.size();
    for (const char kind : {'\t', '\n', '\v', '\f', '\r', ' '}) {
        while (end > start && line[end - 1] == kind) {
            --end;
        }
    }
    line.erase(end);
    line.erase(0, start);
    line.erase(std::min(line.find('\0'), line.size()));
}

/// Whether a trimmed line holds a row: neither empty nor a comment, which opens with "#".
inline bool is_matrix_row(const std::string& trimmed_line) {
    return !trimmed_line.empty() && trimmed_line.front() != '#';
}

/// Splits a trimmed line at every delimiter and calls `visit(field, end)` with each field in order:
/// two `const char*`, `*end` being a NUL.
///
/// Empty fields between delimiters are visited; a delimiter at the very end adds no field.
/// The delimiters of `line` are overwritten with NUL, so that each field ends where it should for
/// functions such as `strtod`, and no field is copied.
template <typename Visit>
void for_each_matrix_field(std::string& line, char delimiter, const Visit& visit) {
    std::size_t start = 0;
    while (start < line.size()) {
        const std::size_t end = std::min(line.find(delimiter, start), line.size());
        line[end] = '\0';  // at end() this rewrites the terminator with itself
        visit(line.c_str() + start, line.c_str() + end);
        start = end + 1;
    }
}

}  // namespace ovik
