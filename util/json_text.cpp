#include "util/json_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <nlohmann/json.hpp>

namespace ovik {

namespace {

template <typename Members>
std::string json_object_of(const Members& members) {
    std::string object = "{";
    for (const auto& [name, value] : members) {
        object += object.size() == 1 ? "\"" : ",\"";
        object += name;
        object += "\":";
        object += value;
    }
    return object + "}";
}

/// Whether a text is printable ASCII without what JSON writes otherwise.
bool needs_no_escapes(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return c >= ' ' && c <= '~' && c != '"' && c != '\\';
    });
}

template <typename T>
void append_number(std::string& json, T number) {
    char text[32];
    json.append(text, std::to_chars(text, text + sizeof text, number).ptr);
}

template <typename T>
std::string text_of(const T& value) {
    std::string json;
    append_json(json, value);
    return json;
}

}  // namespace

void append_json(std::string& json, const std::string& text) {
    if (needs_no_escapes(text)) {
        json += '"';
        json += text;
        json += '"';
    } else {
        json += nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    }
}

void append_json(std::string& json, double number) {
    if (std::isfinite(number)) {
        append_number(json, number);
    } else {
        json += "null";
    }
}

void append_json(std::string& json, int number) {
    append_number(json, number);
}

void append_json(std::string& json, std::size_t number) {
    append_number(json, number);
}

void append_json(std::string& json, bool value) {
    json += value ? "true" : "false";
}

std::string json_text(const std::string& text) {
    return text_of(text);
}

std::string json_text(double number) {
    return text_of(number);
}

std::string json_text(int number) {
    return text_of(number);
}

std::string json_text(std::size_t number) {
    return text_of(number);
}

std::string json_text(bool value) {
    return text_of(value);
}

std::string json_list(const std::vector<std::string>& elements) {
    std::string list = "[";
    for (const std::string& element : elements) {
        list += (list.size() == 1 ? "" : ",") + element;
    }
    return list + "]";
}

std::string json_object(std::initializer_list<std::pair<std::string_view, std::string>> members) {
    return json_object_of(members);
}

std::string json_object(const std::vector<std::pair<std::string, std::string>>& members) {
    return json_object_of(members);
}

}  // namespace ovik
