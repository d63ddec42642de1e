#include "util/format.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include <climits>

#include "tests/fuzz/support/input_lines.h"
#include "tests/fuzz/support/require.h"

/// `to_str` and `num2string` against the same rules, written character by character.

namespace ovik {
namespace {

/// @param digits  at least 0
std::string plain_cut(std::string_view text, std::size_t digits, std::string_view separator) {
    bool has_point = false;
    std::string whole;
    std::string fraction;
    for (const char c : text) {
        if (c == '.' && !has_point) {
            has_point = true;
        } else {
            (has_point ? fraction : whole) += c;
        }
    }
    if (digits == 0) {
        return whole;
    }
    std::string result = whole;
    result += separator;
    for (const char c : has_point ? std::string_view(fraction) : text) {
        if (digits-- == 0) {
            break;
        }
        result += c;
    }
    return result;
}

template <typename T>
std::string plain_number(T value) {
    char text[400];
    const auto written = [&] {
        if constexpr (std::is_floating_point_v<T>) {
            return std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
        } else {
            return std::to_chars(text, text + sizeof text, value);
        }
    }();
    OVIK_REQUIRE(written.ec == std::errc());
    return {text, written.ptr};
}

template <typename T>
void check_number(T value, int digits) {
    const std::string expected =
        plain_cut(plain_number(value), static_cast<std::size_t>(digits), ".");
    OVIK_REQUIRE(num2string(value, digits) == expected);
    OVIK_REQUIRE(num2string(value, digits, 1, true) == expected);
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovik;
    test::InputLines input(data, size);
    const auto digits = static_cast<int>(input.count(INT_MAX));
    const double number = input.number();
    const long whole = input.wholeNumber();
    const std::string separator = input.text();
    const std::string text = input.rest();
    check_number(number, digits);
    check_number(static_cast<float>(number), digits);
    check_number(whole, digits);
    check_number(static_cast<int>(whole % INT_MAX), digits);
    const std::string cut = to_str(text, digits, separator);
    OVIK_REQUIRE(cut == plain_cut(text, static_cast<std::size_t>(digits), separator));
    OVIK_REQUIRE(cut.size() <= 2 * text.size() + separator.size());
    OVIK_REQUIRE(num2string(number) == num2string(number, 2));
    OVIK_REQUIRE(num2string(whole) == num2string(whole, 2));
    OVIK_REQUIRE(num2string(digits) == std::to_string(digits));
    return 0;
}
