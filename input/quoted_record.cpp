#include "input/quoted_record.h"

namespace ovik {

namespace {

constexpr std::size_t kNowhere = std::string_view::npos;

/// The first quote from a place on that is not doubled.
std::size_t find_single_quote(std::string_view text, std::size_t from) {
    std::size_t quote = text.find('"', from);
    while (quote != kNowhere && quote + 1 < text.size() && text[quote + 1] == '"') {
        quote = text.find('"', quote + 2);
    }
    return quote;
}

/// Whether nothing but blanks stands between a place and the end of its field.
bool is_field_end(std::string_view text, std::size_t at, char delimiter) {
    while (at < text.size() && text[at] != delimiter && text[at] != '\n' &&
           std::string_view(" \t\v\f\r").find(text[at]) != kNowhere) {
        ++at;
    }
    return at == text.size() || text[at] == delimiter || text[at] == '\n';
}

/// Whether a field that opens with a quote is one of plain text all the same.
bool is_text(std::string_view text, std::size_t open, std::size_t close, char delimiter) {
    const std::string_view between = text.substr(open, close - open);
    return between.find(delimiter) == kNowhere && between.find('\n') == kNowhere;
}

std::size_t line_length(std::string_view text, std::size_t from) {
    const std::size_t line_feed = text.find('\n', from);
    return line_feed == kNowhere ? text.size() : line_feed + 1;
}

}  // namespace

namespace quoted_record {

std::optional<std::size_t> closing_quote(std::string_view text, std::size_t start, char delimiter) {
    const std::size_t close = find_single_quote(text, start + 1);
    return close != kNowhere && is_field_end(text, close + 1, delimiter) ? std::optional(close)
                                                                         : std::nullopt;
}

std::size_t unquote(std::string& text, std::size_t open, std::size_t close) {
    std::size_t to = open;
    for (std::size_t from = open + 1; from < close; ++from) {
        const bool is_line_end = text[from] == '\r' && text[from + 1] == '\n';
        from += is_line_end || text[from] == '"' ? 1 : 0;
        text[to++] = text[from] == '\n' ? ' ' : text[from];
    }
    return to;
}

}  // namespace quoted_record

QuotedRecord first_record(std::string_view text, char delimiter) {
    const std::string_view first_line = text.substr(0, line_length(text, 0));
    const std::string_view trimmed = trimmed_matrix_line(first_line);
    if (!is_matrix_row(trimmed)) {
        return {first_line.size(), std::nullopt, false};
    }
    auto at = static_cast<std::size_t>(trimmed.data() - text.data());
    while (true) {
        if (text[at] == '"') {
            const std::size_t close = find_single_quote(text, at + 1);
            if (close == kNowhere) {
                return {line_length(text, at), at, true};
            }
            if (!is_field_end(text, close + 1, delimiter) && !is_text(text, at, close, delimiter)) {
                return {line_length(text, at), at, false};
            }
            at = close + 1;
        }
        const std::size_t line_feed = std::min(text.find('\n', at), text.size());
        const std::size_t next = text.substr(0, line_feed).find(delimiter, at);
        if (next == kNowhere || next + 1 == text.size()) {
            return {next == kNowhere && line_feed < text.size() ? line_feed + 1 : text.size(),
                    std::nullopt,
                    false};
        }
        at = next + 1;
    }
}

std::vector<std::string_view> fields_over_lines(std::string_view record, char delimiter) {
    std::vector<std::string_view> fields;
    const std::string_view trimmed = trimmed_matrix_line(record);
    auto at = static_cast<std::size_t>(trimmed.data() - record.data());
    while (at < record.size()) {
        const auto close =
            record[at] == '"' ? quoted_record::closing_quote(record, at, delimiter) : std::nullopt;
        const std::size_t end = close.value_or(at);
        const std::string_view between = record.substr(at, end - at);
        if (between.find('\n') != kNowhere) {
            fields.push_back(between.substr(1));
        }
        at = std::min(record.find(delimiter, end), record.size() - 1) + 1;
    }
    return fields;
}

}  // namespace ovik
