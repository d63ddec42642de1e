#include "input/block_of_rows.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "input/field_checks.h"
#include "input/quoted_record.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"

namespace ovik {

namespace {

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
    const std::size_t line_feeds = line_feeds_in(whole);
    addText<true>(whole.ends_with('\n') ? whole.substr(0, whole.size() - 1) : whole, rules);
    lines += line_feeds - (whole.ends_with('\n') ? 1 : 0);
    return record.length;
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

void BlockOfRows::noteName(const RowRules& rules, bool has_lost_field) {
    const std::string& name = names.back();
    double value = 0.0;
    if (has_lost_field &&
        rules.values.read(name.c_str(), name.c_str() + name.size(), value) == FieldKind::Number) {
        note(report.lost_names, 0, "");
    }
    if (name.empty() && rules.names_field != RowRules::kNoField) {
        note(report.unnamed, 0, "");
    }
    of_this_row_.clear();
}

}  // namespace ovik
