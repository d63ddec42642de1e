#include "results/result_rows.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "util/input_file.h"

namespace ovik {

namespace {

bool is_number(std::string_view text, double& value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool is_count(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool is_group(std::string_view text) {
    constexpr std::string_view kPair = "Group:";
    if (text == "Data") {
        return true;
    }
    if (text.substr(0, kPair.size()) != kPair) {
        return false;
    }
    text.remove_prefix(kPair.size());
    const std::size_t colon = text.find(':');
    return colon != std::string_view::npos && is_count(text.substr(0, colon)) &&
           is_count(text.substr(colon + 1));
}

/// Cuts the last field off a text and returns it; the text keeps what precedes the comma. The first
/// field of all has no comma before it.
std::string_view cut_last_field(std::string_view& text, bool& was_first) {
    const std::size_t comma = text.rfind(',');
    was_first = comma == std::string_view::npos;
    const std::string_view field = was_first ? text : text.substr(comma + 1);
    text = was_first ? std::string_view() : text.substr(0, comma);
    return field;
}

/// Reads everything before the function, from its end.
bool parse_leading_fields(std::string_view text, ResultRow& row) {
    bool was_first = false;
    const std::string_view group = cut_last_field(text, was_first);
    const std::string_view point_size = cut_last_field(text, was_first);
    const std::string_view y = cut_last_field(text, was_first);
    if (was_first || !is_group(group) || !is_count(point_size) || !is_number(y, row.y)) {
        return false;
    }
    const std::string_view x = cut_last_field(text, was_first);
    if (!is_number(x, row.x)) {
        return false;
    }
    row.name = text;
    row.group = group;
    return true;
}

}  // namespace

std::optional<ResultRow> parse_result_row(std::string_view line) {
    constexpr std::string_view kFunctionStart = ",\"";
    if (line.empty() || line.back() != '"') {
        return std::nullopt;
    }
    ResultRow row;
    std::size_t start = line.rfind(kFunctionStart, line.size() - kFunctionStart.size());
    while (start != std::string_view::npos) {
        const std::size_t function = start + kFunctionStart.size();
        if (function < line.size() && parse_leading_fields(line.substr(0, start), row)) {
            row.function = line.substr(function, line.size() - 1 - function);
            return row;
        }
        if (start == 0) {
            break;
        }
        start = line.rfind(kFunctionStart, start - 1);
    }
    return std::nullopt;
}

namespace {

std::optional<std::vector<ResultRow>> parse_result_rows(const std::string& path) {
    std::ifstream file = open_input_file(path);
    if (!file.is_open()) {
        throw_read_failure();
    }
    std::string line;
    if (!std::getline(file, line)) {
        return std::nullopt;
    }
    std::vector<ResultRow> rows;
    while (std::getline(file, line)) {
        std::optional<ResultRow> row = parse_result_row(line);
        if (!row) {
            return std::nullopt;
        }
        rows.push_back(std::move(*row));
    }
    return rows;
}

}  // namespace

std::optional<std::vector<ResultRow>> read_result_rows(const std::string& path) {
    if (!std::filesystem::is_regular_file(path)) {
        return std::nullopt;
    }
    return with_read_failures_named(path, [&] { return parse_result_rows(path); });
}

bool is_in_table_as(double coordinate, double in_table) {
    constexpr double kTableStep = 0.001;
    return std::fabs(in_table - coordinate) < kTableStep ||
           (!std::isfinite(coordinate) && !std::isfinite(in_table));
}

}  // namespace ovik
