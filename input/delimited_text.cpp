#include "input/delimited_text.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "input/block_of_rows.h"
#include "input/byte_order_mark.h"
#include "input/field_checks.h"
#include "input/layout_of.h"
#include "input/name_checks.h"
#include "input/quoted_record.h"
#include "input/record_blocks.h"
#include "input/text_head.h"
#include "input/text_remarks.h"
#include "input/value_reader.h"
#include "util/input_error.h"
#include "util/input_file.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"
#include "util/parallel.h"

namespace ovik {

namespace {

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
    report.whole_numbers += more.whole_numbers;
    report.plain_fractions += more.plain_fractions;
    for (FieldFindings MatrixReport::*const findings : {&MatrixReport::not_numbers,
                                                        &MatrixReport::with_text_behind,
                                                        &MatrixReport::decimal_commas,
                                                        &MatrixReport::grouped_digits,
                                                        &MatrixReport::point_groups,
                                                        &MatrixReport::doubtful_points,
                                                        &MatrixReport::not_finite,
                                                        &MatrixReport::lost_names,
                                                        &MatrixReport::unnamed}) {
        add(report.*findings, std::move(more.*findings), lines_above);
    }
    report.rows_over_lines.add(more.rows_over_lines, lines_above);
    report.rows_that_may_be_several.add(more.rows_that_may_be_several, lines_above);
    add(report.by_column, more.by_column);
    std::move(more.no_rows.begin(), more.no_rows.end(), std::back_inserter(report.no_rows));
}

/// Takes note of a comment that has the fields of a row.
void add_skipped_row(MatrixReport& report, std::size_t line, const std::string& first_field) {
    FieldFindings& findings =
        is_name_behind_hash(first_field) ? report.skipped_names : report.skipped_rows;
    if (findings.count++ < FieldFindings::kListed) {
        findings.places.push_back({line, first_field, 1, first_field});
    }
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
    for (const BlockOfRows::Comment& comment : block.comments) {
        if (fits(comment.length, report.columns)) {
            add_skipped_row(report, lines_above + comment.line, comment.first_field);
        }
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

/// Where the first lines of a head end.
struct HeadLines {
    std::size_t count = 0;
    std::size_t bytes = 0;
};

/// @param most  lines; there are less if the head has less whole ones
HeadLines first_lines(const MatrixSource& source, std::size_t most) {
    const std::string_view head = source.head();
    HeadLines lines;
    while (lines.count < most && lines.bytes < head.size()) {
        const std::size_t line_feed = head.find('\n', lines.bytes);
        if (line_feed == std::string_view::npos && !source.isWholeInHead()) {
            break;
        }
        lines.bytes = std::min(line_feed, head.size() - 1) + 1;
        ++lines.count;
    }
    return lines;
}

/// Takes the head of a file without the lines above its first row.
///
/// @param source  its head grows until it holds them
/// @param lines   how many there are; becomes less if the file has less
std::string take_head_below(MatrixSource& source, std::size_t& lines) {
    HeadLines above = first_lines(source, lines);
    while (above.count < lines && source.growHead()) {
        above = first_lines(source, lines);
    }
    lines = above.count;
    std::string head = source.takeHead();
    head.erase(0, above.bytes);
    return head;
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

}  // namespace

InspectedMatrix inspect_matrix(MatrixSource& source,
                               const TableLayout& layout,
                               const std::vector<std::string>& missing_signs) {
    // Takes note of the locale of this thread, by which all of the text is read.
    const RowRules rules{layout, ValueReader(layout.decimal, missing_signs)};
    std::size_t lines = layout.lines_above;
    std::string begun = take_head_below(source, lines);
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
    matrix.header = layout.header;
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
    matrix.report.notes = text_notes(layout, matrix.report);
    matrix.report.warnings = text_warnings(layout, matrix.report);
    check_fields(source.name(), layout, options, matrix);
    check_names(source.name(), layout, options, matrix);
    return matrix;
}

}  // namespace ovik
