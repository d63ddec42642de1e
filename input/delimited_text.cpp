#include "input/delimited_text.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <optional>
#include <string_view>
#include <utility>

#include "input/delimiters.h"
#include "input/field_kind.h"
#include "input/text_head.h"
#include "util/input_file.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"
#include "util/number_field.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr std::size_t kListed = 3;

/// What parts the fields of a line, and how they become numbers.
struct FieldRules {
    char delimiter = '\t';
    NumberReader numbers;
};

/// Whether a discarded first line is more likely a row: all its values are numbers, and they are
/// not what measurements are headed with, which is whole or rising numbers (time points, doses).
bool looks_like_data(std::string_view first_line, const FieldRules& rules) {
    std::string line(trimmed_matrix_line(first_line));
    if (!is_matrix_row(line)) {
        return false;
    }
    std::vector<double> values;
    bool all_numbers = true;
    bool at_name = true;
    for_each_matrix_field(line, rules.delimiter, [&](const char* field, const char* end) {
        double value = 0.0;
        all_numbers = all_numbers && (at_name || classify_field(rules.numbers, field, end, value) ==
                                                     FieldKind::Number);
        if (!at_name) {
            values.push_back(value);
        }
        at_name = false;
    });
    const bool all_whole =
        std::all_of(values.begin(), values.end(), [](double v) { return v == std::floor(v); });
    return all_numbers && !all_whole && !std::is_sorted(values.begin(), values.end());
}

/// The fields of the first line without the one above the names, which may be left out.
std::vector<std::string> column_names_of(std::string_view first_line,
                                         char delimiter,
                                         std::size_t columns) {
    std::string line(trimmed_matrix_line(first_line));
    std::vector<std::string> names;
    for_each_matrix_field(line, delimiter, [&](const char* field, const char* end) {
        names.emplace_back(field, end);
    });
    if (names.size() == columns + 1) {
        names.erase(names.begin());
    } else if (names.size() != columns) {
        names.clear();
    }
    return names;
}

/// Adds findings of lines further down, which were counted from the line `lines`.
void add(FieldFindings& findings, FieldFindings&& more, std::size_t lines) {
    if (more.count == 0) {
        return;
    }
    if (findings.count == 0) {
        findings.first = std::move(more.first);
        findings.first.line += lines;
    }
    findings.count += more.count;
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

    void add(std::string_view text, const FieldRules& rules) {
        ++lines;
        if (!first_nul_line && text.find('\0') != std::string_view::npos) {
            first_nul_line = lines;
        }
        const std::string_view trimmed = trimmed_matrix_line(text);
        if (!is_matrix_row(trimmed)) {
            return;
        }
        line_ = trimmed;
        addRow(rules);
        const std::string_view from_name =
            text.substr(static_cast<std::size_t>(trimmed.data() - text.data()));
        const auto delimiters = std::count(from_name.begin(), from_name.end(), rules.delimiter);
        lengths.back().untrimmed = static_cast<std::size_t>(delimiters);
        noteName(text.starts_with(rules.delimiter) && !trimmed.starts_with(rules.delimiter),
                 rules.numbers);
    }

    std::size_t lines = 0;
    std::optional<std::size_t> first_nul_line;
    std::vector<std::string> names;
    std::vector<std::size_t> row_lines;
    std::vector<Length> lengths;
    /// The values of all rows, row after row.
    std::vector<double> values;
    std::size_t numbers = 0;
    FieldFindings not_numbers;
    FieldFindings with_text_behind;
    FieldFindings not_finite;
    FieldFindings lost_names;
    FieldFindings unnamed;
    FieldFindings quoted_names;

  private:
    void addRow(const FieldRules& rules) {
        std::size_t fields = 0;
        for_each_matrix_field(line_, rules.delimiter, [&](const char* field, const char* end) {
            ++fields;
            if (fields == 1) {
                names.emplace_back(field, end);
            } else {
                addValue(rules.numbers, field, end, fields);
            }
        });
        row_lines.push_back(lines);
        lengths.push_back({fields - 1, 0});
    }

    /// @param number  of the field in its line
    void addValue(const NumberReader& number_reader,
                  const char* field,
                  const char* end,
                  std::size_t number) {
        double value = 0.0;
        const FieldKind kind = classify_field(number_reader, field, end, value);
        if (kind == FieldKind::Missing) {
            values.push_back(std::nan(""));
            return;
        }
        values.push_back(value);
        if (kind == FieldKind::NotNumber) {
            note(not_numbers, number, field);
            return;
        }
        ++numbers;
        if (kind == FieldKind::TextBehind) {
            note(with_text_behind, number, field);
        } else if (kind == FieldKind::NotFinite) {
            note(not_finite, number, field);
        }
    }

    /// @param number  of the field in the line of the row that came last
    void note(FieldFindings& findings, std::size_t number, const char* text) const {
        if (findings.count == 0) {
            findings.first = {lines, names.back(), number, text};
        }
        ++findings.count;
    }

    /// @param has_lost_field  whether trimming has taken an empty field from the front of the line
    void noteName(bool has_lost_field, const NumberReader& number_reader) {
        const std::string& name = names.back();
        double value = 0.0;
        if (has_lost_field &&
            classify_field(number_reader, name.c_str(), name.c_str() + name.size(), value) ==
                FieldKind::Number) {
            note(lost_names, 1, "");
        }
        if (name.empty()) {
            note(unnamed, 1, "");
        } else if (name.front() == '"') {
            note(quoted_names, 1, "");
        }
    }

    std::string line_;
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

/// Adds the findings of a block and takes its names over.
void take_over(BlockOfRows& block, std::size_t lines_above, InspectedMatrix& matrix) {
    MatrixReport& report = matrix.report;
    for (std::size_t n = 0; n < block.names.size(); ++n) {
        const BlockOfRows::Length& length = block.lengths[n];
        const std::size_t line = lines_above + block.row_lines[n];
        if (!fits(length, report.columns)) {
            ++report.ragged_rows;
            if (report.first_ragged_rows.size() < kListed) {
                report.first_ragged_rows.push_back({line, block.names[n], length.values});
            }
        }
        matrix.row_lines.push_back(line);
        matrix.row_names.push_back(std::move(block.names[n]));
    }
    report.numbers += block.numbers;
    add(report.not_numbers, std::move(block.not_numbers), lines_above);
    add(report.with_text_behind, std::move(block.with_text_behind), lines_above);
    add(report.not_finite, std::move(block.not_finite), lines_above);
    add(report.lost_names, std::move(block.lost_names), lines_above);
    add(report.unnamed, std::move(block.unnamed), lines_above);
    add(report.quoted_names, std::move(block.quoted_names), lines_above);
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

}  // namespace

InspectedMatrix inspect_matrix(MatrixSource& source, char delimiter) {
    // Takes note of the locale of this thread, by which all of the text is read.
    const FieldRules rules{delimiter, NumberReader()};
    std::string begun = source.takeHead();
    const std::size_t line_end = std::min(begun.find('\n'), begun.size());
    const std::string first_line = begun.substr(0, line_end);
    begun.erase(0, line_end + 1);
    Blocks blocks = with_read_failures_named(source.name(), [&] {
        return parse_line_blocks<BlockOfRows>(
            source.rest(), std::move(begun), [&](std::string_view lines, BlockOfRows& block) {
                const auto most = std::count(lines.begin(), lines.end(), delimiter);
                block.values.reserve(static_cast<std::size_t>(most));
                for_each_line(lines, [&](std::string_view line) { block.add(line, rules); });
            });
    });
    InspectedMatrix matrix;
    MatrixReport& report = matrix.report;
    report.columns = column_count(blocks);
    std::size_t lines = 1;
    for (BlockOfRows& block : blocks) {
        if (block.first_nul_line) {
            refuse_nul_byte(source.name(), lines + *block.first_nul_line);
        }
        take_over(block, lines, matrix);
        lines += block.lines;
    }
    report.rows = matrix.row_names.size();
    report.header_looks_like_data = looks_like_data(first_line, rules);
    matrix.column_names = column_names_of(first_line, delimiter, report.columns);
    if (report.ragged_rows == 0) {
        matrix.values = joined_values(blocks, report.rows, report.columns);
    }
    return matrix;
}

InspectedMatrix read_delimited_text(MatrixSource& source, const LoadOptions& options) {
    const Delimiters delimiters = find_delimiter(source, options.delimiter);
    if (options.before_reading) {
        options.before_reading(source, delimiters.used);
    }
    InspectedMatrix matrix = inspect_matrix(source, delimiters.used);
    check_delimited(source.name(), delimiters, matrix.report);
    return matrix;
}

}  // namespace ovik
