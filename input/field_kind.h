#pragma once

#include <string_view>

#include "util/number_field.h"

namespace ovik {

/// What a value field of a matrix file holds.
enum class FieldKind {
    Number,
    /// Nothing but blanks, or one of the usual signs of a missing value: NA, N/A, #N/A, NaN, null,
    /// none (in capitals or not), "-", "--", "." and "?".
    Missing,
    /// Other text that does not open with a finite number.
    NotNumber,
    /// A number with text behind it.
    TextBehind,
    /// An infinity, a number beyond the range of `double`, or a NaN with a sign or a payload.
    NotFinite,
};

/// Whether a field holds one of these signs, or nothing but blanks.
bool is_missing_sign(std::string_view field);

/// A text without the blanks around it.
std::string_view without_blanks(std::string_view text);

/// Whether a field is a number with a decimal comma, as 0,12 or -1,5E3.
bool has_decimal_comma(std::string_view field);

/// Whether a field is a number whose digits commas group by three, as 1,234 or 12,345,678.5.
bool has_grouped_digits(std::string_view field);

/// Whether a field is a number whose digits points group by three, with a decimal comma or none, as
/// 1.234, 12.345.678 or 1.234,5.
bool has_point_groups(std::string_view field);

/// Tells what a field holds; blanks around it do not count.
///
/// @param numbers  made under the locale by which the text is read
/// @param field    text that ends with a NUL at `end`
/// @param value    set to the number that `strtod` reads from the field, 0 if it reads none
FieldKind classify_field(const NumberReader& numbers,
                         const char* field,
                         const char* end,
                         double& value);

}  // namespace ovik
