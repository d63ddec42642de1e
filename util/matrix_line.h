#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

/// The rules for one line of a matrix file: what is cut off its ends and where its fields lie.

namespace ovik {

/// What trimming leaves of a line: part of the line itself. Single passes per kind of character.
///
/// Front: tabs, then vertical tabs, then form feeds, then blanks; each kind in one run and in this
/// order only, so that a blank before a tab leaves the tab. Line feeds and carriage returns stay.
/// End: tabs, line feeds, vertical tabs, form feeds, carriage returns, blanks, likewise.
/// Last, the line is cut at its first NUL.
inline std::string_view trimmed_matrix_line(std::string_view line) {
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
    const std::string_view trimmed = line.substr(start, end - start);
    return trimmed.substr(0, trimmed.find('\0'));
}

/// Whether a trimmed line holds a row: neither empty nor a comment, which opens with "#".
inline bool is_matrix_row(std::string_view trimmed_line) {
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
