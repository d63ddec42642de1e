#include "input/matrix_guess.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "input/field_kind.h"
#include "util/line_blocks.h"
#include "util/matrix_line.h"
#include "util/number_field.h"

namespace ovik {

namespace {

constexpr std::size_t kRowsLookedAt = 20;

/// The first few rows, trimmed; of a head that is not all there is, the last line is left out.
std::vector<std::string> first_rows(const MatrixSource& source) {
    std::string_view head = source.head();
    if (!source.isWholeInHead()) {
        head = head.substr(0, head.rfind('\n') + 1);  // npos + 1 is 0
    }
    std::vector<std::string> rows;
    bool is_header = true;
    for_each_line(head, [&](std::string_view line) {
        const std::string_view row = trimmed_matrix_line(line);
        if (!is_header && rows.size() < kRowsLookedAt && is_matrix_row(row)) {
            rows.emplace_back(row);
        }
        is_header = false;
    });
    return rows;
}

std::size_t count_numbers(std::string line, char delimiter, const NumberReader& reader) {
    std::size_t numbers = 0;
    bool at_name = true;
    for_each_matrix_field(line, delimiter, [&](const char* field, const char* end) {
        double value = 0.0;
        const FieldKind kind = classify_field(reader, field, end, value);
        // Decimal commas leave text behind every number; they are more likely than values that
        // are separated by them.
        const bool counts = kind == FieldKind::Number || kind == FieldKind::TextBehind;
        numbers += !at_name && counts ? 1 : 0;
        at_name = false;
    });
    return numbers;
}

}  // namespace

std::optional<char> guess_delimiter(const MatrixSource& source) {
    constexpr char kCandidates[] = {'\t', ';', ',', ' '};
    std::size_t numbers[std::size(kCandidates)] = {};
    const NumberReader reader;
    for (const std::string& row : first_rows(source)) {
        for (std::size_t i = 0; i < std::size(kCandidates); ++i) {
            numbers[i] += count_numbers(row, kCandidates[i], reader);
        }
    }
    const auto* const most = std::max_element(std::begin(numbers), std::end(numbers));
    return *most == 0 ? std::nullopt : std::optional(kCandidates[most - std::begin(numbers)]);
}

std::optional<MatrixShape> guess_shape(const MatrixSource& source, char delimiter) {
    const std::vector<std::string> rows = first_rows(source);
    if (!source.size() || rows.empty()) {
        return std::nullopt;
    }
    std::size_t bytes = 0;
    std::size_t columns = 0;
    for (const std::string& row : rows) {
        bytes += row.size() + 1;
        const auto delimiters = std::count(row.begin(), row.end(), delimiter);
        columns = std::max(columns, static_cast<std::size_t>(delimiters));
    }
    return MatrixShape{*source.size() / std::max<std::size_t>(bytes / rows.size(), 1), columns};
}

}  // namespace ovik
