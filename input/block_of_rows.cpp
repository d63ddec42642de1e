#include "input/block_of_rows.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "input/field_checks.h"
#include "input/quoted_record.h"
#include "input/text_lines.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"

namespace ovik {

namespace {

/// Trims a line. Where names and values stand in other fields than usual, an empty field in front
/// has to stay, unless every row has it.
std::string_view trimmed(std::string_view line, const RowRules& rules) {
    const TableLayout& layout = rules.layout;
    const std::string_view usual = trimmed_matrix_line(line);
    if (rules.is_ordinary || !line.starts_with(layout.delimiter)) {
        return usual;
    }
    const auto start = static_cast<std::size_t>(usual.data() - line.data());
    const std::size_t front =
        std::min({start, layout.empty_front, delimiters_in_front(line, layout.delimiter)});
    return line.substr(front, start - front + usual.size());
}

/// Whether a field in quotes may be several rows between two stray quotes: for each of its line
/// ends, there are at least half as many delimiters in it as in the row around it.
bool may_hold_rows(std::string_view row, char delimiter) {
    const auto count_in = [](std::string_view text, char c) {
        return std::count(text.begin(), text.end(), c);
    };
    const std::vector<std::string_view> fields = fields_over_lines(row, delimiter);
    auto around = count_in(row, delimiter);
    for (const std::string_view field : fields) {
        around -= count_in(field, delimiter);
    }
    return std::any_of(fields.begin(), fields.end(), [&](std::string_view field) {
        const auto within = count_in(field, delimiter);
        return within > 0 && 2 * within >= count_in(field, '\n') * around;
    });
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

}  // namespace

void BlockOfRows::addAll(std::string_view text, const RowRules& rules) {
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

std::size_t BlockOfRows::addRecord(std::string_view text, const RowRules& rules) {
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
    const std::string_view row = whole.ends_with('\n') ? whole.substr(0, whole.size() - 1) : whole;
    const std::size_t line_feeds = line_feeds_in(row);
    addText<true>(row, rules);
    if (line_feeds > 0 && !has_ended) {
        noteLines(row, lines, lines + line_feeds, rules.layout.delimiter);
    }
    lines += line_feeds;
    return record.length;
}

void BlockOfRows::noteLines(std::string_view row,
                            std::size_t first_line,
                            std::size_t last_line,
                            char delimiter) {
    const RowsOverLines one = {1, first_line, last_line};
    report.rows_over_lines.add(one, 0);
    if (may_hold_rows(row, delimiter)) {
        report.rows_that_may_be_several.add(one, 0);
    }
}

template <bool IsQuoted>
void BlockOfRows::addText(std::string_view text, const RowRules& rules) {
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
    if (row.starts_with('#')) {
        addComment(row, empty_fields_behind(text, row, layout.delimiter), rules);
        return;
    }
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
    lengths.back().untrimmed =
        layout.valuesAmong(fields + empty_fields_behind(text, row, layout.delimiter));
    noteName(rules,
             std::min(static_cast<std::size_t>(row.data() - text.data()),
                      delimiters_in_front(text, layout.delimiter)));
}

void BlockOfRows::addComment(std::string_view text, std::size_t more, const RowRules& rules) {
    if (text.find(rules.layout.delimiter) == std::string_view::npos) {
        return;
    }
    line_ = text;
    std::string first_field;
    std::size_t fields = 0;
    std::size_t numbers = 0;
    for_each_matrix_field(line_, rules.layout.delimiter, [&](const char* field, const char* end) {
        double value = 0.0;
        if (fields == 0) {
            first_field.assign(field, end);
        } else if (rules.layout.isValue(fields)) {
            numbers += rules.values.read(field, end, value) == FieldKind::Number ? 1 : 0;
        }
        ++fields;
    });
    if (2 * numbers > rules.layout.valuesAmong(fields)) {
        comments.push_back(
            {lines,
             std::move(first_field),
             {rules.layout.valuesAmong(fields), rules.layout.valuesAmong(fields + more)}});
    }
}

bool BlockOfRows::isNoRow(std::string_view row, const TableLayout& layout) {
    const std::string* const name = find_first_field(row, layout.delimiter, layout.no_rows);
    if (name != nullptr) {
        report.no_rows.push_back(*name);
    }
    return name != nullptr;
}

template <typename VisitFields>
std::size_t BlockOfRows::addRow(const RowRules& rules, const VisitFields& visit_fields) {
    row_lines.push_back(lines);
    names.emplace_back();
    const std::size_t row_start = values.size();
    std::size_t field = 0;
    visit_fields([&](const char* text, const char* end) {
        if (field == rules.names_field) {
            names.back().assign(text, end);
        } else if (field >= rules.layout.left_out.size() || !rules.layout.left_out[field]) {
            addValue(rules, text, end, field, values.size() - row_start);
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

void BlockOfRows::addValue(const RowRules& rules,
                           const char* text,
                           const char* end,
                           std::size_t field,
                           std::size_t column) {
    double value = 0.0;
    const FieldKind kind = rules.values.read(text, end, value);
    values.push_back(kind == FieldKind::Missing ? std::nan("") : value);
    if (kind != FieldKind::Missing && kind != FieldKind::NotNumber) {
        ++report.numbers;
    }
    if (kind != FieldKind::Number) {
        noteField(kind, text, field, column);
    } else if (rules.doubts_points) {
        notePoints(text, field);
    }
}

void BlockOfRows::noteField(FieldKind kind,
                            const char* text,
                            std::size_t field,
                            std::size_t column) {
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
    } else if (has_point_groups(text)) {
        note(report.point_groups, field, text);
    }
}

void BlockOfRows::notePoints(const char* text, std::size_t field) {
    if (has_point_groups(text)) {
        note(report.doubtful_points, field, text);
    } else if (std::string_view(text).find_first_of(".eExX") == std::string_view::npos) {
        ++report.whole_numbers;
    } else {
        ++report.plain_fractions;
    }
}

void BlockOfRows::note(FieldFindings& findings, std::size_t field, const char* text) {
    if (findings.count++ < FieldFindings::kListed) {
        findings.places.push_back({lines, names.back(), field + 1, text});
        of_this_row_.push_back(&findings);
    }
}

void BlockOfRows::noteName(const RowRules& rules, std::size_t lost_fields) {
    const std::string& name = names.back();
    const bool has_names = rules.names_field != RowRules::kNoField;
    if (has_names && lost_fields > 0) {
        double value = 0.0;
        const FieldKind kind = rules.values.read(name.c_str(), name.c_str() + name.size(), value);
        const bool is_usual = lost_fields <= rules.layout.empty_front;
        if ((kind == FieldKind::Number && (!is_usual || rules.names_field == 0)) ||
            (kind == FieldKind::Missing && !is_usual)) {
            note(report.lost_names, 0, "");
        }
    }
    if (name.empty() && has_names) {
        note(report.unnamed, 0, "");
    }
    of_this_row_.clear();
}

}  // namespace ovik
