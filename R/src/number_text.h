#pragma once

#include <cstdlib>
#include <cstring>
#include <limits>

namespace ovik::r {

/// The number that the command reads a text as; NaN where it is no number, or more than one.
inline double number_of(const char* text) {
    char* rest = nullptr;
    const double number = std::strtod(text, &rest);
    const bool is_number = rest != text && rest[std::strspn(rest, " \t\v\f\r")] == '\0';
    return is_number ? number : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace ovik::r
