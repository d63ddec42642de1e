#include "input/table_head.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "input/byte_order_mark.h"
#include "input/delimiters.h"
#include "input/header_line.h"
#include "input/matrix_guess.h"
#include "input/quoted_record.h"
#include "input/text_lines.h"
#include "util/input_error.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"

namespace ovik {

namespace {

constexpr std::size_t kRowsLookedAt = 20;

/// The lines of the head that are whole, without a byte order mark.
std::string_view text_of(const MatrixSource& source) {
    return without_byte_order_mark(whole_lines(source, 0));
}

/// The delimiter that the first line gives, as "sep=;" of spreadsheets does; none if it is no such
/// line.
std::optional<char> delimiter_line(std::string_view text) {
    const std::size_t end = text.substr(0, 7).find_first_of("\r\n");
    return text.starts_with("sep=") && end == 5 ? std::optional(text[4]) : std::nullopt;
}

/// The line behind the one that says that the table begins, from 0.
///
/// @param source  its head grows until it holds that line and rows behind it
/// @throws InputError if there is none
std::size_t header_behind_table_begin(MatrixSource& source) {
    while (true) {
        const std::vector<std::string_view> lines = line_views(text_of(source));
        const auto begin = std::find_if(lines.begin(), lines.end(), [](std::string_view line) {
            return line.starts_with("!series_matrix_table_begin") ||
                   line.starts_with("!dataset_table_begin");
        });
        const auto behind = static_cast<std::size_t>(lines.end() - begin);
        if ((behind > kRowsLookedAt || source.isWholeInHead()) && behind > 0) {
            return lines.size() - behind + 1;
        }
        if (!source.growHead()) {
            throw InputError(source.name() +
                             ": opens as a file of GEO, but has no table of a series matrix or a "
                             "data set\nTake the \"Series Matrix File\" of the series.");
        }
    }
}

/// The line of the header, from 0, of a text that is of a known kind by its first line; none else.
std::optional<std::size_t> known_header_line(MatrixSource& source) {
    const std::string_view text = text_of(source);
    const std::string_view first_line = text.substr(0, text.find('\n'));
    const std::string_view trimmed = trimmed_matrix_line(first_line);
    if (trimmed == "#1.2" || trimmed == "#1.3") {
        return 2;
    }
    if (delimiter_line(text)) {
        return 1;
    }
    return opens_as_geo(text) ? std::optional(header_behind_table_begin(source)) : std::nullopt;
}

/// A text without its first lines.
std::string_view without_lines(std::string_view text, std::size_t lines) {
    for (; lines > 0 && !text.empty(); --lines) {
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    }
    return text;
}

/// The line of the first row, comments and empty lines apart, from 0.
std::size_t first_text_line(std::string_view text) {
    std::size_t number = 0;
    std::size_t found = 0;
    bool is_found = false;
    for_each_line(text, [&](std::string_view line) {
        if (!is_found && is_matrix_row(trimmed_matrix_line(line))) {
            is_found = true;
            found = number;
        }
        ++number;
    });
    return found;
}

/// The delimiters with which a record opens, if trimming takes them away.
std::size_t empty_fields_in_front(std::string_view record, char delimiter) {
    return trimmed_matrix_line(record).starts_with(delimiter)
               ? 0
               : delimiters_in_front(record, delimiter);
}

void read_rows(std::string_view text, TableHead& head) {
    std::size_t line = head.lines_above + 1;
    while (!text.empty() && head.rows.size() < kRowsLookedAt) {
        const QuotedRecord record = first_record(text, head.delimiter);
        const std::string_view row = text.substr(0, record.length);
        text.remove_prefix(record.length);
        if (is_record_row(trimmed_matrix_line(row), head.delimiter)) {
            const std::size_t front = empty_fields_in_front(row, head.delimiter);
            head.empty_front = head.rows.empty() ? front : std::min(head.empty_front, front);
            head.rows.push_back(fields_of(row, head.delimiter, false));
            const std::size_t fields = head.rows.back().size();
            const std::size_t untrimmed =
                fields + empty_fields_behind(row, trimmed_matrix_line(row), head.delimiter);
            head.untrimmed_fields =
                head.rows.size() == 1 ? untrimmed : std::min(head.untrimmed_fields, untrimmed);
            if (fields > head.row_fields) {
                head.row_fields = fields;
                head.longest_row_line = line;
            }
        }
        line += line_views(row).size();
    }
}

/// Where the header has a field for each empty one in front of the rows, they are a column.
std::size_t most_empty_front(std::string_view record, const TableHead& head) {
    const bool has_all =
        fields_of(record, head.delimiter, true).size() == head.row_fields + head.empty_front;
    return has_all ? empty_fields_in_front(record, head.delimiter) : head.empty_front;
}

/// Puts the fields of a header where a row has them: a field for the names may be left out, or
/// trimmed away, as empty ones at the end are.
std::vector<std::string> aligned_header(std::string_view record, TableHead& head) {
    std::vector<std::string> whole = fields_of(record, head.delimiter, true);
    std::vector<std::string> usual = fields_of(record, head.delimiter, false);
    const std::size_t fields = head.row_fields;
    std::vector<std::string>& header =
        whole.size() == fields || (usual.size() != fields && whole.size() + 1 == fields) ? whole
                                                                                         : usual;
    const std::size_t untrimmed =
        header.size() + empty_fields_behind(record, trimmed_matrix_line(record), head.delimiter);
    if (header.size() < fields && untrimmed >= fields && untrimmed == head.untrimmed_fields) {
        header.resize(fields);
    }
    if (header.size() + 1 == fields) {
        header.insert(header.begin(), "");
        head.lacks_names_header = true;
    }
    if (!header.empty() && header[0].starts_with('#')) {
        const std::size_t name = header[0].find_first_not_of("# ");
        header[0].erase(0, name);
    }
    return header;
}

/// Where the header stands: the lines in front of it; none if there is no header.
std::optional<std::size_t> header_line(MatrixSource& source,
                                       const LoadOptions& options,
                                       std::optional<std::size_t> known,
                                       TableHead& head) {
    const std::string_view text = text_of(source);
    const std::size_t first = known.value_or(first_text_line(text));
    const std::size_t without = first + (options.has_header || known ? 1 : 0);
    LoadOptions given = options;
    given.delimiter = options.delimiter ? options.delimiter : delimiter_line(text);
    const Delimiters delimiters =
        find_delimiter(source.name(), without_lines(text, without), given, known.has_value());
    head.delimiter = delimiters.used;
    head.guessed_delimiter = delimiters.guessed;
    if (!options.has_header && delimiter_line(text)) {
        return std::nullopt;
    }
    if (known || !options.has_header) {
        return known;
    }
    const std::size_t header =
        first == 0 ? 0 : find_header(source.name(), text, first, head.delimiter, options);
    return header_below_title(text, header, head.delimiter, options);
}

}  // namespace

TableHead read_table_head(MatrixSource& source, const LoadOptions& options) {
    const std::optional<std::size_t> known = known_header_line(source);
    TableHead head;
    const std::optional<std::size_t> header = header_line(source, options, known, head);
    const std::string_view text = text_of(source);
    // Without a header, the line that gives the delimiter is still no row.
    const std::size_t above = header.value_or(delimiter_line(text) ? 1 : 0);
    std::string_view rows = without_lines(text, above);
    for (const std::string_view line : line_views(text.substr(0, text.size() - rows.size()))) {
        head.opening.emplace_back(trimmed_matrix_line(line));
    }
    const std::size_t header_bytes =
        header && !rows.empty() ? first_record(rows, head.delimiter).length : 0;
    const std::string_view record = rows.substr(0, header_bytes);
    rows.remove_prefix(header_bytes);
    head.lines_above = above + line_views(record).size();
    read_rows(rows, head);
    if (header) {
        head.empty_front = std::min(head.empty_front, most_empty_front(record, head));
        head.header = aligned_header(record, head);
    } else if (!options.has_names) {
        // Without names, the first column may be one of missing values.
        head.empty_front = 0;
    }
    return head;
}

std::vector<std::string> fields_of(std::string_view record, char delimiter, bool keeps_front) {
    const std::string_view usual = trimmed_matrix_line(record);
    const std::size_t front = keeps_front && record.starts_with(delimiter)
                                  ? 0
                                  : static_cast<std::size_t>(usual.data() - record.data());
    const auto end = static_cast<std::size_t>(usual.data() - record.data()) + usual.size();
    std::string line(record.substr(front, end - front));
    std::vector<std::string> fields;
    for_each_record_field(line, delimiter, [&](const char* field, const char* field_end) {
        fields.emplace_back(field, field_end);
    });
    return fields;
}

bool opens_as_geo(std::string_view text) {
    constexpr std::array<std::string_view, 7> kOpenings = {
        "!Series_", "!Sample_", "!dataset", "^DATABASE", "^DATASET", "^SERIES", "^PLATFORM"};
    return std::any_of(kOpenings.begin(), kOpenings.end(), [text](std::string_view opening) {
        return text.starts_with(opening);
    });
}

}  // namespace ovik
