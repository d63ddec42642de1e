#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Values as JSON, piece by piece. The pieces are texts, not a tree: the library's trees take
/// memory as they are destroyed, and end the process when there is none.

namespace ovik {

/// Pure ASCII; bytes that are not UTF-8 become U+FFFD.
std::string json_text(const std::string& text);

/// The shortest form that reads as the same number; null for what is not finite.
std::string json_text(double number);

std::string json_text(int number);

std::string json_text(std::size_t number);

std::string json_text(bool value);

/// @param elements  as JSON
std::string json_list(const std::vector<std::string>& elements);

/// @param members  names, which need no escapes, and values as JSON
std::string json_object(std::initializer_list<std::pair<std::string_view, std::string>> members);

/// The same for members in a list of their own.
std::string json_object(const std::vector<std::pair<std::string, std::string>>& members);

/// Appends what `json_text` gives.
void append_json(std::string& json, const std::string& text);
void append_json(std::string& json, double number);
void append_json(std::string& json, int number);
void append_json(std::string& json, std::size_t number);
void append_json(std::string& json, bool value);

/// A list of values that `json_text` takes.
template <typename Iterator>
std::string json_list_of(Iterator first, Iterator last) {
    std::string list = "[";
    for (Iterator value = first; value != last; ++value) {
        list += value == first ? "" : ",";
        append_json(list, *value);
    }
    return list + "]";
}

template <typename T>
std::string json_list_of(const std::vector<T>& values) {
    return json_list_of(values.begin(), values.end());
}

}  // namespace ovik
