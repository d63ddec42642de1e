#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "input/field_kind.h"

namespace ovik {

/// The decimal sign of this thread's locale.
char decimal_of_locale();

/// Reads the value fields of delimited text.
class ValueReader {
  public:
    /// Takes note of the locale of this thread; fields have to be read under the same one.
    ///
    /// @param decimal        the decimal sign; not given: that of the locale
    /// @param missing_signs  texts that stand for a missing value besides the usual ones; blanks
    /// around
    ///                       them do not count
    explicit ValueReader(std::optional<char> decimal = std::nullopt,
                         std::vector<std::string> missing_signs = {});

    /// As `classify_field`.
    FieldKind read(const char* field, const char* end, double& value) const {
        return is_special_ ? readSpecial(field, end, value)
                           : classify_field(numbers_, field, end, value);
    }

  private:
    FieldKind readSpecial(const char* field, const char* end, double& value) const;

    NumberReader numbers_;
    std::vector<std::string> missing_signs_;
    char decimal_;
    char locale_decimal_;
    bool is_special_;
};

}  // namespace ovik
