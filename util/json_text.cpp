#include "util/json_text.h"

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

}  // namespace

std::string json_text(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

std::string json_text(double number) {
    if (!std::isfinite(number)) {
        return "null";
    }
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

std::string json_text(int number) {
    return std::to_string(number);
}

std::string json_text(std::size_t number) {
    return std::to_string(number);
}

std::string json_text(bool value) {
    return value ? "true" : "false";
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
