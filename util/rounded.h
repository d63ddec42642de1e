#pragma once

#include <charconv>
#include <string>

/// Rounded numbers as text, in every locale with a point.

namespace ovik {

/// A number rounded to so many decimals; exactly half goes to the even digit.
inline std::string rounded_text(double value, int decimals) {
    char text[400];  // a double has at most 309 digits before its point
    const auto result =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    return {text, result.ptr};
}

/// A number rounded to so many digits in all, without zeros at its end; with an exponent where it
/// is shorter so.
inline std::string significant_text(double value, int digits = 6) {
    char text[64];
    const auto result =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits);
    return {text, result.ptr};
}

/// A share of 1 in per cent with one decimal.
inline std::string percent_text(double share) {
    return rounded_text(100.0 * share, 1) + " %";
}

}  // namespace ovik
