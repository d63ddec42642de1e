#include "tools/reported_options.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include <nlohmann/json.hpp>

namespace ovik::tool {

namespace {

using Json = nlohmann::json;

/// @throws nlohmann::json::exception if the value is of another kind
template <typename Option>
void read_value(const Json& json, const Option& option) {
    if constexpr (requires { option.set(""); }) {
        static_cast<void>(option.set(json.get<std::string>()));
    } else if constexpr (requires { option.isAutomatic(); }) {
        const bool is_automatic = option.automatic != nullptr && json.is_string();
        if (option.automatic != nullptr) {
            *option.automatic = is_automatic;
        }
        if (!is_automatic) {
            json.get_to(option.value);
        }
    } else {
        option.value = {};
        const std::size_t count = std::min(json.size(), NumberList::kMost);
        for (std::size_t i = 0; i < count; ++i) {
            option.value.add(json.at(i).get<double>());
        }
    }
}

}  // namespace

void read_reported_options(const Json& json, FitOptions& options) {
    visit_fit_options(options, [&json](const auto& option) {
        const auto found = json.find(std::string(option.words.name));
        if (found != json.end() && !found->is_null()) {
            read_value(*found, option);
        }
    });
}

}  // namespace ovik::tool
