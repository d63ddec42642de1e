#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

/// Numbers as the text of messages and file names: cut, never rounded, to a number of digits, or
/// whole.

namespace ovik {

/// Cuts a decimal text to `digits` characters behind its first ".".
///
/// @param text       a number as text
/// @param digits     0 gives the text before the "." (all of it when there is none)
/// @param separator  takes the place of the "." in the result
/// @return integral part, separator, fraction.
///
/// A text without a "." takes its fraction from its own start: "5" with two digits gives "5.5".
/// Messages of whole seconds show this, and readers of old logs rely on it.
static inline std::string to_str(std::string text, int digits, std::string separator) {
    const int position = static_cast<int>(text.find('.'));
    std::string integral = text.substr(0, static_cast<std::size_t>(position));
    if (digits == 0) {
        return integral;
    }
    // Position -1 makes this 0: the start of the text.
    const std::size_t fraction_start = static_cast<std::size_t>(position) + 1;
    return integral + separator + text.substr(fraction_start, static_cast<std::size_t>(digits));
}

/// A number as text, through `std::to_string` and `to_str` with the separator ".".
///
/// @param digits  characters kept behind the "."; by default none for `int`, two for other types
///
/// The two unnamed arguments are reserved and change nothing.
template <typename T>
static inline std::string num2string(T value,
                                     int digits = std::is_same_v<T, int> ? 0 : 2,
                                     int /*reserved*/ = 0,
                                     bool /*reserved*/ = false) {
    return to_str(std::to_string(value), digits, ".");
}

/// The shortest text that reads back as the same number, in every locale.
template <typename T>
static inline std::string shortest_text(T value) {
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return {text, result.ptr};
}

/// An array of `count` elements, each set to `value`, from array `new`.
///
/// @throws std::bad_array_new_length if its bytes exceed what `new` accepts
/// @throws std::bad_alloc if memory is exhausted
template <typename T>
std::unique_ptr<T[]> new_array(std::size_t count, T value) {
    // Compilers differ in what a length that `new` refuses throws.
    if (count > static_cast<std::size_t>(PTRDIFF_MAX) / sizeof(T)) {
        throw std::bad_array_new_length();
    }
    std::unique_ptr<T[]> array(new T[count]);
    std::fill_n(array.get(), count, value);
    return array;
}

/// An array of `count` elements, each set to `value`; the caller releases it with `delete[]`.
///
/// @param count  0 gives a valid empty array
/// @throws std::bad_array_new_length if `count` is negative
/// @throws std::bad_alloc if memory is exhausted
template <typename T>
T* create_vec_malloc(int count, T value) {
    if (count < 0) {
        throw std::bad_array_new_length();
    }
    return new_array(static_cast<std::size_t>(count), value).release();
}

}  // namespace ovik
