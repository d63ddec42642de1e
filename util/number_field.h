#pragma once

#include <charconv>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <system_error>

namespace ovik {

/// Converts fields to numbers as `strtod` does, only faster.
class NumberReader {
  public:
    /// Takes note of the decimal point of the thread's locale. Fields are to be read under the same
    /// locale, by whatever thread; one that is set later is not followed.
    NumberReader() {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): only read, before threads are started
        const char* const point = std::localeconv()->decimal_point;
        has_point_ = point[0] == '.' && point[1] == '\0';
    }

    /// The number that a field opens with, 0 if it opens with none.
    ///
    /// @param field  text that ends with a NUL at `end`
    /// @param rest   set to what stands behind the number, to `field` if there is none
    double read(const char* field, const char* end, const char*& rest) const {
        double value = 0.0;
        if (has_point_ && readShortDecimal(field, end, value)) {
            rest = end;
            return value;
        }
        if (has_point_ && isPlain(field)) {
            const auto result = std::from_chars(field, end, value);
            if (result.ec == std::errc()) {
                rest = result.ptr;
                return value;
            }
        }
        char* behind = nullptr;
        value = std::strtod(field, &behind);
        rest = behind;
        return value;
    }

    double read(const char* field, const char* end) const {
        const char* rest = nullptr;
        return read(field, end, rest);
    }

  private:
    /// Reads a field that is a decimal number of at most 15 digits, without an exponent, and
    /// nothing else. Digits and power of ten are then numbers without rounding, and so their
    /// quotient is rounded once, as it should be (Clinger, "How to read floating point numbers
    /// accurately", PLDI 1990).
    ///
    /// @return whether the field is such a number
    static bool readShortDecimal(const char* field, const char* end, double& value) {
        constexpr std::size_t kMostDigits = 15;
        static constexpr double kPowersOfTen[kMostDigits + 1] = {
            1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
        const bool is_negative = *field == '-';
        const char* at = field + (is_negative ? 1 : 0);
        std::uint64_t digits = 0;  // wraps for numbers that are too long
        const char* const whole = at;
        for (; isDigit(*at) && at - whole <= std::ptrdiff_t{kMostDigits}; ++at) {
            digits = 10 * digits + static_cast<std::uint64_t>(*at - '0');
        }
        auto digit_count = static_cast<std::size_t>(at - whole);
        std::size_t decimals = 0;
        if (*at == '.') {
            const char* const fraction = ++at;
            for (; isDigit(*at) && at - fraction <= std::ptrdiff_t{kMostDigits}; ++at) {
                digits = 10 * digits + static_cast<std::uint64_t>(*at - '0');
            }
            decimals = static_cast<std::size_t>(at - fraction);
            digit_count += decimals;
        }
        if (at != end || digit_count == 0 || digit_count > kMostDigits) {
            return false;
        }
        const double magnitude = static_cast<double>(digits) / kPowersOfTen[decimals];
        value = is_negative ? -magnitude : magnitude;
        return true;
    }

    /// Whether a field opens with a decimal number without blanks or plus sign before it. Both
    /// functions round such a number correctly, and one that is out of range is left to `strtod`.
    static bool isPlain(const char* field) {
        const char* const digits = field + (*field == '-' ? 1 : 0);
        const bool is_hexadecimal = digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
        return (isDigit(digits[0]) && !is_hexadecimal) || (digits[0] == '.' && isDigit(digits[1]));
    }

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    bool has_point_;
};

}  // namespace ovik
