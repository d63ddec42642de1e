#include "input/delimited_text.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "input/field_checks.h"
#include "input/layout_of.h"
#include "input/name_checks.h"
#include "input/quoted_record.h"
#include "input/record_blocks.h"
#include "input/text_head.h"
#include "input/value_reader.h"
#include "util/input_error.h"
#include "util/input_file.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr std::size_t kNoField = static_cast<std::size_t>(-1);
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// How lines become rows.
struct RowRules {
    const TableLayout& layout;
    ValueReader values;
    bool is_ordinary = layout.isOrdinary();
    std::size_t names_field = layout.names_field.value_or(kNoField);
};

/// Adds findings of lines further down, which were counted from the line `lines`.
void add(FieldFindings& findings, FieldFindings&& more, std::size_t lines) {
    findings.count += more.count;
    for (FieldPlace& place : more.places) {
        if (findings.places.size() < FieldFindings::kListed) {
            findings.places.push_back(std::move(place));
            findings.places.back().line += lines;
        }
    }
}

/// Trims a line. Where names and values stand in other fields than usual, an empty field in front
/// has to stay.
std::string_view trimmed(std::string_view line, const RowRules& rules) {
    const std::string_view usual = trimmed_matrix_line(line);
    if (rules.is_ordinary || !line.starts_with(rules.layout.delimiter)) {
        return usual;
    }
    return line.substr(0, static_cast<std::size_t>(usual.data() - line.data()) + usual.size());
}

/// The entry of a list that is the first field of a line; null if none is.
const std::string* find_first_field(std::string_view line,
                                    char delimiter,
                                    const std::vector<std::string>& list) {
    const bool is_quoted = line.starts_with('"');
    line.remove_prefix(is_quoted ? 1 : 0);
    const auto entry = std::find_if(list.begin(), list.end(), [&](const std::string& text) {
        return line.starts_with(text) &&
               (line.size() == text.size() || line[text.size()] == (is_quoted ? '"' : delimiter));
    });
    return entry == list.end() ? nullptr : &*entry;
}

/// The rows of some lines; lines are counted from 1, the first of these.
class BlockOfRows {
  public:
    /// Values of a row: those read, and those that it would have if trimming had left all of its
    /// line.
    struct Length {
        std::size_t values;
        std::size_t untrimmed;
    };

    /// Adds the rows of a text of whole records.
    void addAll(std::string_view text, const RowRules& rules) {
        while (!text.empty() && !has_ended) {
            const std::size_t quote = std::min(text.find('"'), text.size());
            const std::size_t line_feed = text.substr(0, quote).rfind('\n');
            const std::size_t plain = quote == text.size()                  ? quote
                                      : line_feed == std::string_view::npos ? 0
                                                                            : line_feed + 1;
            for_each_line(text.substr(0, plain),
                          [&](std::string_view line) { addText<false>(line, rules); });
            text.remove_prefix(plain);
            if (!text.empty() && !has_ended) {
                text.remove_prefix(addRecord(text, rules));
            }
        }
    }

    std::size_t lines = 0;
    /// Whether the line that ends the table has come; what follows is not looked at.
    bool has_ended = false;
    std::optional<std::size_t> first_nul_line;
    /// The line of the first quote that opens a field and is not closed as it should be.
    std::optional<std::size_t> first_bad_quote_line;
    std::vector<std::string> names;
    std::vector<std::size_t> row_lines;
    std::vector<Length> lengths;
    /// The values of all rows, row after row.
    std::vector<double> values;
    /// What the fields hold: `numbers`, findings, `by_column` and `no_rows` alone are filled in.
    MatrixReport report;

  private:
    /// Adds the record with which a text begins.
    ///
    /// @return bytes of it
    std::size_t addRecord(std::string_view text, const RowRules& rules) {
        const QuotedRecord record = first_record(text, rules.layout.delimiter);
        const std::string_view whole = text.substr(0, record.length);
        const auto line_feeds_in = [](std::string_view part) {
            return static_cast<std::size_t>(std::count(part.begin(), part.end(), '\n'));
        };
        if (record.bad_quote) {
            const std::size_t above = lines + line_feeds_in(text.substr(0, *record.bad_quote));
            first_bad_quote_line = first_bad_quote_line.value_or(above + 1);
            lines += line_feeds_in(whole);
            return record.length;
        }
        const std::size_t line_feeds = line_feeds_in(whole);
        addText<true>(whole.ends_with('\n') ? whole.substr(0, whole.size() - 1) : whole, rules);
        lines += line_feeds - (whole.ends_with('\n') ? 1 : 0);
        return record.length;
    }

    /// @param text  a line, or a record of several lines, without the line feed at its end
    template <bool IsQuoted>
    void addText(std::string_view text, const RowRules& rules) {
        ++lines;
        if (has_ended) {
            return;
        }
        const TableLayout& layout = rules.layout;
        if (!first_nul_line && text.find('\0') != std::string_view::npos) {
            first_nul_line = lines;
        }
        if (!layout.end_mark.empty() && text.starts_with(layout.end_mark)) {
            has_ended = true;
            return;
        }
        const std::string_view row = trimmed(text, rules);
        if (!is_record_row(row, layout.delimiter) || isNoRow(row, layout)) {
            return;
        }
        line_ = row;
        const auto visit_fields = [&](const auto& visit) {
            if constexpr (IsQuoted) {
                for_each_record_field(line_, layout.delimiter, visit);
            } else {
                for_each_matrix_field(line_, layout.delimiter, visit);
            }
        };
        const std::size_t fields = addRow(rules, visit_fields);
        // What trimming has left out is empty fields.
        const auto row_end =
            text.begin() + (row.data() - text.data()) + static_cast<std::ptrdiff_t>(row.size());
        const auto more = std::count(row_end, text.end(), layout.delimiter) +
                          (row.ends_with(layout.delimiter) ? 1 : 0);
        lengths.back().untrimmed = layout.valuesAmong(fields + static_cast<std::size_t>(more));
        noteName(rules, text.starts_with(layout.delimiter) && !row.starts_with(layout.delimiter));
    }

    bool isNoRow(std::string_view row, const TableLayout& layout) {
        const std::string* const name = find_first_field(row, layout.delimiter, layout.no_rows);
        if (name != nullptr) {
            report.no_rows.push_back(*name);
        }
        return name != nullptr;
    }

    /// @return fields of the row
    template <typename VisitFields>
    std::size_t addRow(const RowRules& rules, const VisitFields& visit_fields) {
        row_lines.push_back(lines);
        names.emplace_back();
        const std::size_t row_start = values.size();
        std::size_t field = 0;
        visit_fields([&](const char* text, const char* end) {
            if (field == rules.names_field) {
                names.back().assign(text, end);
            } else if (field >= rules.layout.left_out.size() || !rules.layout.left_out[field]) {
                addValue(rules.values, text, end, field, values.size() - row_start);
            }
            ++field;
        });
        for (FieldFindings* const findings : of_this_row_) {
            findings->places.back().row = names.back();
        }
        of_this_row_.clear();
        lengths.push_back({values.size() - row_start, 0});
        return field;
    }

    void addValue(const ValueReader& reader,
                  const char* text,
                  const char* end,
                  std::size_t field,
                  std::size_t column) {
        double value = 0.0;
        const FieldKind kind = reader.read(text, end, value);
        values.push_back(kind == FieldKind::Missing ? std::nan("") : value);
        if (kind != FieldKind::Missing && kind != FieldKind::NotNumber) {
            ++report.numbers;
        }
        if (kind != FieldKind::Number) {
            noteField(kind, text, field, column);
        }
    }

    void noteField(FieldKind kind, const char* text, std::size_t field, std::size_t column) {
        if (kind == FieldKind::NotFinite) {
            note(report.not_finite, field, text);
            return;
        }
        if (report.by_column.size() <= column) {
            report.by_column.resize(column + 1);
        }
        ColumnFindings& in_column = report.by_column[column];
        if (kind == FieldKind::Missing) {
            ++in_column.missing;
            return;
        }
        ++in_column.texts;
        if (kind == FieldKind::NotNumber) {
            note(report.not_numbers, field, text);
        } else {
            note(report.with_text_behind, field, text);
        }
        if (has_grouped_digits(text)) {
            note(report.grouped_digits, field, text);
        } else if (has_decimal_comma(text)) {
            note(report.decimal_commas, field, text);
        }
    }

    /// Takes note of a field of the row that came last, whose name may not be known yet.
    void note(FieldFindings& findings, std::size_t field, const char* text) {
        if (findings.count++ < FieldFindings::kListed) {
            findings.places.push_back({lines, names.back(), field + 1, text});
            of_this_row_.push_back(&findings);
        }
    }

    /// @param has_lost_field  whether trimming has taken an empty field from the front of the line
    void noteName(const RowRules& rules, bool has_lost_field) {
        const std::string& name = names.back();
        double value = 0.0;
        if (has_lost_field && rules.values.read(name.c_str(), name.c_str() + name.size(), value) ==
                                  FieldKind::Number) {
            note(report.lost_names, 0, "");
        }
        if (name.empty() && rules.names_field != kNoField) {
            note(report.unnamed, 0, "");
        }
        of_this_row_.clear();
    }

    std::string line_;
    /// Findings that the row being read has added a place to.
    std::vector<FieldFindings*> of_this_row_;
};

using Blocks = std::deque<BlockOfRows>;

/// Values of a row: those of the first, or of the longest if the first has empty fields there that
/// trimming has taken away.
std::size_t column_count(const Blocks& blocks) {
    std::optional<BlockOfRows::Length> first;
    std::size_t longest = 0;
    for (const BlockOfRows& block : blocks) {
        for (const BlockOfRows::Length& length : block.lengths) {
            first = first ? first : length;
            longest = std::max(longest, length.values);
        }
    }
    return !first ? 0 : first->untrimmed >= longest ? longest : first->values;
}

bool fits(const BlockOfRows::Length& length, std::size_t columns) {
    return length.values == columns || (length.values < columns && length.untrimmed >= columns);
}

void add(std::vector<ColumnFindings>& columns, const std::vector<ColumnFindings>& more) {
    columns.resize(std::max(columns.size(), more.size()));
    for (std::size_t d = 0; d < more.size(); ++d) {
        columns[d].texts += more[d].texts;
        columns[d].missing += more[d].missing;
    }
}

/// Adds what fields hold in a block further down.
void add(MatrixReport& report, MatrixReport&& more, std::size_t lines_above) {
    report.numbers += more.numbers;
    for (FieldFindings MatrixReport::*const findings : {&MatrixReport::not_numbers,
                                                        &MatrixReport::with_text_behind,
                                                        &MatrixReport::decimal_commas,
                                                        &MatrixReport::grouped_digits,
                                                        &MatrixReport::not_finite,
                                                        &MatrixReport::lost_names,
                                                        &MatrixReport::unnamed}) {
        add(report.*findings, std::move(more.*findings), lines_above);
    }
    add(report.by_column, more.by_column);
    std::move(more.no_rows.begin(), more.no_rows.end(), std::back_inserter(report.no_rows));
}

/// Adds the findings of a block and takes its names over.
void take_over(BlockOfRows& block, std::size_t lines_above, InspectedMatrix& matrix) {
    MatrixReport& report = matrix.report;
    for (std::size_t n = 0; n < block.names.size(); ++n) {
        const BlockOfRows::Length& length = block.lengths[n];
        const std::size_t line = lines_above + block.row_lines[n];
        if (!fits(length, report.columns)) {
            ++report.ragged_rows;
            if (report.first_ragged_rows.size() < FieldFindings::kListed) {
                report.first_ragged_rows.push_back({line, block.names[n], length.values});
            }
        }
        matrix.row_lines.push_back(line);
        matrix.row_names.push_back(std::move(block.names[n]));
    }
    add(report, std::move(block.report), lines_above);
    report.has_end_mark = report.has_end_mark || block.has_ended;
}

/// Joins the values of blocks that fit; where rows end early, NaN stands for what is missing.
std::unique_ptr<double[]> joined_values(Blocks& blocks, std::size_t rows, std::size_t columns) {
    auto values = std::make_unique_for_overwrite<double[]>(rows * columns);
    std::vector<double*> destinations;
    double* destination = values.get();
    for (const BlockOfRows& block : blocks) {
        destinations.push_back(destination);
        destination += block.lengths.size() * columns;
    }
    parallel_for_each(blocks.size(), 1, [&](std::size_t i) {
        const double* source = blocks[i].values.data();
        double* row = destinations[i];
        for (const BlockOfRows::Length& length : blocks[i].lengths) {
            std::fill(std::copy_n(source, length.values, row), row + columns, std::nan(""));
            source += length.values;
            row += columns;
        }
        blocks[i].values = {};
    });
    return values;
}

/// Takes the lines above the first row away from the start of a text.
///
/// @return how many there were, which may be less than there should be
std::size_t take_lines(std::string& text, std::size_t lines) {
    std::size_t taken = 0;
    std::size_t bytes = 0;
    for (; taken < lines && bytes < text.size(); ++taken) {
        bytes = std::min(text.find('\n', bytes), text.size() - 1) + 1;
    }
    text.erase(0, bytes);
    return taken;
}

Blocks parse(MatrixSource& source, std::string begun, const RowRules& rules) {
    return with_read_failures_named(source.name(), [&] {
        RecordBlocks texts(
            source.rest(), kTextBlockBytes, std::move(begun), rules.layout.delimiter);
        return parse_blocks<BlockOfRows>(texts, [&](std::string_view text, BlockOfRows& block) {
            const auto most = std::count(text.begin(), text.end(), rules.layout.delimiter);
            block.values.reserve(static_cast<std::size_t>(most));
            block.addAll(text, rules);
        });
    });
}

/// Takes away what stands behind the line that ends the table.
void drop_behind_end(Blocks& blocks) {
    const auto end = std::find_if(
        blocks.begin(), blocks.end(), [](const BlockOfRows& block) { return block.has_ended; });
    if (end != blocks.end()) {
        blocks.erase(end + 1, blocks.end());
    }
}

/// @throws InputError if a block holds what no text may hold
void check_block(const std::string& path, const BlockOfRows& block, std::size_t lines_above) {
    if (block.first_nul_line) {
        refuse_nul_byte(path, lines_above + *block.first_nul_line);
    }
    if (block.first_bad_quote_line) {
        refuse_quote(path, lines_above + *block.first_bad_quote_line);
    }
}

/// The headers of the fields that are values; none if there are more or fewer than columns.
std::vector<std::string> column_names_of(const TableLayout& layout, std::size_t columns) {
    std::vector<std::string> names;
    for (std::size_t field = 0; field < layout.header.size(); ++field) {
        if (layout.isValue(field)) {
            names.push_back(layout.header[field]);
        }
    }
    return names.size() == columns ? names : std::vector<std::string>();
}

/// What there is to tell of how the file was taken.
std::vector<std::string> notes_of(const TableLayout& layout, const MatrixReport& report) {
    std::vector<std::string> notes = layout.notes;
    std::string rows;
    for (const std::string& name : layout.no_rows) {
        if (std::find(report.no_rows.begin(), report.no_rows.end(), name) != report.no_rows.end()) {
            rows += (rows.empty() ? "" : ", ") + name;
        }
    }
    if (!rows.empty()) {
        notes.push_back("no rows: " + rows);
    }
    return notes;
}

}  // namespace

InspectedMatrix inspect_matrix(MatrixSource& source,
                               const TableLayout& layout,
                               const std::vector<std::string>& missing_signs) {
    // Takes note of the locale of this thread, by which all of the text is read.
    const RowRules rules{layout, ValueReader(layout.decimal, missing_signs)};
    std::string begun = source.takeHead();
    std::size_t lines = take_lines(begun, layout.lines_above);
    if (lines == 0 && begun.starts_with(kByteOrderMark)) {
        begun.erase(0, kByteOrderMark.size());
    }
    Blocks blocks = parse(source, std::move(begun), rules);
    drop_behind_end(blocks);
    InspectedMatrix matrix;
    MatrixReport& report = matrix.report;
    report.columns = column_count(blocks);
    for (BlockOfRows& block : blocks) {
        check_block(source.name(), block, lines);
        take_over(block, lines, matrix);
        lines += block.lines;
    }
    report.rows = matrix.row_names.size();
    matrix.has_names = layout.names_field.has_value();
    matrix.column_names = column_names_of(layout, report.columns);
    for (const std::size_t field : layout.valueFields(report.columns)) {
        matrix.column_fields.push_back(field + 1);
    }
    if (report.ragged_rows == 0) {
        matrix.values = joined_values(blocks, report.rows, report.columns);
    }
    return matrix;
}

InspectedMatrix read_delimited_text(MatrixSource& source, const LoadOptions& options) {
    const TableLayout layout = layout_of(source, options);
    if (options.before_reading) {
        options.before_reading(source, layout);
    }
    InspectedMatrix matrix = inspect_matrix(source, layout, options.missing_signs);
    matrix.report.notes = notes_of(layout, matrix.report);
    check_fields(source.name(), layout, options, matrix);
    check_names(source.name(), layout, options, matrix);
    return matrix;
}

}  // namespace ovik
