#include "input/field_kind.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

namespace ovik {

namespace {

constexpr const char* kBlanks = " \t\v\f\r";

char lower_case(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// Takes digits away from the front of a text.
///
/// @return how many
std::size_t take_digits(std::string_view& text) {
    const auto count = static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), is_digit) - text.begin());
    text.remove_prefix(count);
    return count;
}

/// Takes a character away from the front of a text if it is one of these.
bool take(std::string_view& text, std::string_view characters) {
    const bool is_there = !text.empty() && characters.find(text.front()) != std::string_view::npos;
    text.remove_prefix(is_there ? 1 : 0);
    return is_there;
}

/// Whether a field is a number whose digits are grouped by three.
bool has_groups(std::string_view field, std::string_view separator, std::string_view decimal) {
    std::string_view text = without_blanks(field);
    take(text, "+-");
    const bool is_zero = text.starts_with('0');
    const std::size_t whole = take_digits(text);
    std::size_t groups = 0;
    while (take(text, separator)) {
        if (take_digits(text) != 3) {
            return false;
        }
        ++groups;
    }
    if (take(text, decimal)) {
        take_digits(text);
    }
    return !is_zero && whole >= 1 && whole <= 3 && groups > 0 && text.empty();
}

}  // namespace

bool is_missing_sign(std::string_view field) {
    static constexpr std::string_view kSigns[] = {
        "na", "n/a", "#n/a", "nan", "null", "none", "-", "--", ".", "?"};
    const std::string_view text = without_blanks(field);
    return text.empty() ||
           std::any_of(std::begin(kSigns), std::end(kSigns), [text](std::string_view sign) {
               return std::equal(
                   text.begin(), text.end(), sign.begin(), sign.end(), [](char a, char b) {
                       return lower_case(a) == b;
                   });
           });
}

std::string_view without_blanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

bool has_decimal_comma(std::string_view field) {
    std::string_view text = without_blanks(field);
    take(text, "+-");
    const std::size_t whole = take_digits(text);
    if (!take(text, ",") || (take_digits(text) == 0 && whole == 0)) {
        return false;
    }
    if (take(text, "eE")) {
        take(text, "+-");
        return take_digits(text) > 0 && text.empty();
    }
    return text.empty();
}

bool has_grouped_digits(std::string_view field) {
    return has_groups(field, ",", ".");
}

bool has_point_groups(std::string_view field) {
    return has_groups(field, ".", ",");
}

FieldKind classify_field(const NumberReader& numbers,
                         const char* field,
                         const char* end,
                         double& value) {
    const char* rest = nullptr;
    value = numbers.read(field, end, rest);
    const bool has_number = rest != field;
    const bool is_whole = rest[std::strspn(rest, kBlanks)] == '\0';
    if (has_number && std::isfinite(value)) {
        return is_whole ? FieldKind::Number : FieldKind::TextBehind;
    }
    if (is_missing_sign({field, static_cast<std::size_t>(end - field)})) {
        return FieldKind::Missing;
    }
    // Text such as the gene NAN1 opens with no number.
    return has_number && is_whole ? FieldKind::NotFinite : FieldKind::NotNumber;
}

}  // namespace ovik
