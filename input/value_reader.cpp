#include "input/value_reader.h"

#include <algorithm>
#include <clocale>
#include <utility>

namespace ovik {

char decimal_of_locale() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): only read, before threads are started
    return std::localeconv()->decimal_point[0];
}

ValueReader::ValueReader(std::optional<char> decimal, std::vector<std::string> missing_signs)
    : missing_signs_(std::move(missing_signs)),
      decimal_(decimal.value_or(decimal_of_locale())),
      locale_decimal_(decimal_of_locale()),
      is_special_(!missing_signs_.empty()) {
    if (decimal.has_value()) {
        is_special_ = is_special_ || *decimal != locale_decimal_;
    }
    for (std::string& sign : missing_signs_) {
        sign = std::string(without_blanks(sign));
    }
}

FieldKind ValueReader::readSpecial(const char* field, const char* end, double& value) const {
    const std::string_view text(field, static_cast<std::size_t>(end - field));
    const std::string_view sign = without_blanks(text);
    if (is_missing_sign(text) ||
        std::find(missing_signs_.begin(), missing_signs_.end(), sign) != missing_signs_.end()) {
        value = 0.0;
        return FieldKind::Missing;
    }
    if (decimal_ == locale_decimal_) {
        return classify_field(numbers_, field, end, value);
    }
    std::string converted(text);
    const bool has_other_sign = text.find(locale_decimal_) != std::string_view::npos;
    std::replace(converted.begin(), converted.end(), decimal_, locale_decimal_);
    const FieldKind kind =
        classify_field(numbers_, converted.c_str(), converted.c_str() + converted.size(), value);
    return has_other_sign && kind == FieldKind::Number ? FieldKind::TextBehind : kind;
}

}  // namespace ovik
