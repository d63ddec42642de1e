#include "plots/numeric_labels.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <set>

namespace ovik {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n\f\v";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

/// Whether numbers are names of groups: whole, and few, or all from 0 or 1 up to how many there
/// are.
bool are_groups(const std::set<double>& values) {
    constexpr std::size_t kMostGroups = 12;
    if (std::any_of(values.begin(), values.end(), [](double v) { return v != std::floor(v); })) {
        return false;
    }
    const double least = *values.begin();
    const double most = *values.rbegin();
    return values.size() <= kMostGroups || ((least == 0.0 || least == 1.0) &&
                                            most - least + 1 == static_cast<double>(values.size()));
}

}  // namespace

bool says_none(std::string_view label) {
    std::string text(trimmed(label));
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    constexpr std::array<std::string_view, 5> kNone = {"", "other", "none", "na", "unknown"};
    return std::find(kNone.begin(), kNone.end(), text) != kNone.end();
}

std::optional<double> number_of_label(std::string_view label) {
    std::string_view text = trimmed(label);
    const bool has_sign = text.starts_with('+') || text.starts_with('-');
    // Digits follow, and neither "inf" nor a second sign.
    if (text.find_first_of("0123456789.") != (has_sign ? 1 : 0)) {
        return std::nullopt;
    }
    text.remove_prefix(text.starts_with('+') ? 1 : 0);
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end) {
        return std::nullopt;
    }
    return number;
}

std::vector<double> quantities_of(std::span<const std::string> labels) {
    std::vector<double> numbers;
    numbers.reserve(labels.size());
    std::set<double> values;
    for (const std::string& label : labels) {
        if (says_none(label)) {
            numbers.push_back(std::numeric_limits<double>::quiet_NaN());
            continue;
        }
        const std::optional<double> number = number_of_label(label);
        if (!number) {
            return {};
        }
        numbers.push_back(*number);
        values.insert(*number);
    }
    return values.empty() || are_groups(values) ? std::vector<double>() : numbers;
}

}  // namespace ovik
