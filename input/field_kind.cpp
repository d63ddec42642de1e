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

bool is_missing(std::string_view field) {
    static constexpr std::string_view kSigns[] = {
        "na", "n/a", "#n/a", "nan", "null", "none", "-", "--", ".", "?"};
    const std::size_t first = field.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return true;
    }
    const std::string_view text = field.substr(first, field.find_last_not_of(kBlanks) + 1 - first);
    return std::any_of(std::begin(kSigns), std::end(kSigns), [text](std::string_view sign) {
        return std::equal(text.begin(), text.end(), sign.begin(), sign.end(), [](char a, char b) {
            return lower_case(a) == b;
        });
    });
}

}  // namespace

FieldKind classify_field(const NumberReader& numbers,
                         const char* field,
                         const char* end,
                         double& value) {
    const char* rest = nullptr;
    value = numbers.read(field, end, rest);
    const bool has_number = rest != field;
    if (has_number && std::isfinite(value)) {
        return rest[std::strspn(rest, kBlanks)] == '\0' ? FieldKind::Number : FieldKind::TextBehind;
    }
    if (is_missing({field, static_cast<std::size_t>(end - field)})) {
        return FieldKind::Missing;
    }
    return has_number ? FieldKind::NotFinite : FieldKind::NotNumber;
}

}  // namespace ovik
