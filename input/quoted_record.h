#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/matrix_line.h"

/// Records of delimited text whose fields may stand in double quotes (RFC 4180): a field that opens
/// with a quote may hold delimiters and line feeds, and a quote within it is doubled. Quotes that
/// stand elsewhere in a field are text, and so are those of a field without delimiter or line feed
/// that has more text behind its closing quote ("orphan" RNA).

namespace ovik {

/// A record at the start of a text.
struct QuotedRecord {
    /// Bytes of it, with the line feed that ends it; of one with a `bad_quote`, those of the line.
    std::size_t length = 0;
    /// Where a quote opens that nothing closes, or that is closed in the middle of a field.
    std::optional<std::size_t> bad_quote;
    /// Whether the quote might be closed behind the end of the text.
    bool is_open = false;
};

/// Finds the end of the record with which a text begins. Lines that are comments have no quotes.
///
/// @param text  not empty; opens a line
QuotedRecord first_record(std::string_view text, char delimiter);

/// The fields of a record without a bad quote that hold line feeds, with what stands between their
/// quotes.
std::vector<std::string_view> fields_over_lines(std::string_view record, char delimiter);

/// Whether a trimmed record is a row: neither empty nor a comment, and more than delimiters, which
/// spreadsheets write for empty rows.
inline bool is_record_row(std::string_view trimmed, char delimiter) {
    return is_matrix_row(trimmed) &&
           (trimmed.front() != delimiter ||
            trimmed.find_first_not_of(delimiter) != std::string_view::npos);
}

/// Splits a record without a bad quote, as `for_each_matrix_field` splits lines: the fields are
/// visited without their quotes, and line ends within them become blanks.
///
/// @param record  trimmed; overwritten
template <typename Visit>
void for_each_record_field(std::string& record, char delimiter, const Visit& visit);

/// What follows is for `for_each_record_field` alone.
namespace quoted_record {

/// The end of the field that opens with the quote at `start`: its closing quote, or none if the
/// quotes are text.
std::optional<std::size_t> closing_quote(std::string_view text, std::size_t start, char delimiter);

/// Moves what stands between two quotes of a text to the first of them.
///
/// @return the end of it
std::size_t unquote(std::string& text, std::size_t open, std::size_t close);

}  // namespace quoted_record

template <typename Visit>
void for_each_record_field(std::string& record, char delimiter, const Visit& visit) {
    std::size_t start = 0;
    while (start < record.size()) {
        std::size_t end = start;
        std::size_t text_end = start;
        const auto close = record[start] == '"'
                               ? quoted_record::closing_quote(record, start, delimiter)
                               : std::nullopt;
        if (close) {
            end = std::min(record.find(delimiter, *close), record.size());
            text_end = quoted_record::unquote(record, start, *close);
        } else {
            end = std::min(record.find(delimiter, start), record.size());
            text_end = end;
        }
        record[text_end] = '\0';  // at end() this rewrites the terminator with itself
        visit(record.c_str() + start, record.c_str() + text_end);
        start = end + 1;
    }
}

}  // namespace ovik
