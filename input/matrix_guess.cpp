#include "input/matrix_guess.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "input/field_kind.h"
#include "input/quoted_record.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"
#include "util/number_field.h"

namespace ovik {

namespace {

constexpr std::size_t kRowsLookedAt = 20;

/// Whether a value field counts as one. Decimal commas are more likely than values that are
/// separated by them.
bool is_number_like(const NumberReader& reader, const char* field, const char* end) {
    double value = 0.0;
    const std::string_view text(field, static_cast<std::size_t>(end - field));
    return classify_field(reader, field, end, value) == FieldKind::Number ||
           has_decimal_comma(text) || has_point_groups(text);
}

/// @param needs_comma  whether numbers with a decimal comma alone count
std::size_t count_numbers(std::string_view text,
                          char delimiter,
                          bool needs_comma,
                          const NumberReader& reader) {
    const auto counts = [&](const char* field, const char* end) {
        return needs_comma ? has_decimal_comma({field, static_cast<std::size_t>(end - field)})
                           : is_number_like(reader, field, end);
    };
    std::size_t numbers = 0;
    std::size_t rows = 0;
    std::string row;
    while (!text.empty() && rows < kRowsLookedAt) {
        const QuotedRecord record = first_record(text, delimiter);
        row = trimmed_matrix_line(text.substr(0, record.length));
        text.remove_prefix(record.length);
        if (!is_record_row(row, delimiter)) {
            continue;
        }
        ++rows;
        bool at_name = true;
        for_each_record_field(row, delimiter, [&](const char* field, const char* end) {
            numbers += !at_name && counts(field, end) ? 1 : 0;
            at_name = false;
        });
    }
    return numbers;
}

}  // namespace

std::optional<char> guess_delimiter(std::string_view rows, std::optional<char> decimal) {
    constexpr char kCandidates[] = {'\t', ';', ',', ' '};
    std::size_t numbers[std::size(kCandidates)] = {};
    const NumberReader reader;
    for (std::size_t i = 0; i < std::size(kCandidates); ++i) {
        // Fields in quotes alone can have decimal commas between delimiters that are commas.
        const bool needs_comma = kCandidates[i] == ',' && decimal == ',';
        numbers[i] = count_numbers(rows, kCandidates[i], needs_comma, reader);
    }
    const auto* const most = std::max_element(std::begin(numbers), std::end(numbers));
    return *most == 0 ? std::nullopt : std::optional(kCandidates[most - std::begin(numbers)]);
}

std::optional<MatrixShape> guess_shape(const MatrixSource& source, const TableLayout& layout) {
    std::size_t rows = 0;
    std::size_t bytes = 0;
    std::size_t fields = 0;
    for_each_line(whole_lines(source, layout.lines_above), [&](std::string_view line) {
        const std::string_view row = trimmed_matrix_line(line);
        if (rows < kRowsLookedAt && is_matrix_row(row)) {
            ++rows;
            bytes += row.size() + 1;
            const auto delimiters = std::count(row.begin(), row.end(), layout.delimiter);
            fields = std::max(fields, static_cast<std::size_t>(delimiters) + 1);
        }
    });
    if (!source.size() || rows == 0) {
        return std::nullopt;
    }
    return MatrixShape{*source.size() / std::max<std::size_t>(bytes / rows, 1),
                       layout.valuesAmong(fields)};
}

std::string_view whole_lines(const MatrixSource& source, std::size_t without) {
    std::string_view head = source.head();
    if (!source.isWholeInHead()) {
        head = head.substr(0, head.rfind('\n') + 1);  // npos + 1 is 0
    }
    for (; without > 0 && !head.empty(); --without) {
        head.remove_prefix(std::min(head.find('\n'), head.size() - 1) + 1);
    }
    return head;
}

}  // namespace ovik
