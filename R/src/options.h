#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <ovik/stats/fit_options.h>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace ovik::r {

/// What R calls an option: as the command does, in snake case.
inline std::string r_name(const OptionWords& words) {
    const std::string flags(words.flags);
    std::string name = flags.substr(flags.find("--") + 2);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

/// The value of an argument: numbers, none for NULL, or a text.
using Argument = std::variant<std::vector<double>, std::string>;

/// Whether an option may have a number of R, which are all real.
template <typename Option>
bool holds(const Option& option, double number) {
    using Number = typename Option::Number;
    if constexpr (std::is_same_v<Number, int>) {
        return number >= std::numeric_limits<int>::min() &&
               number <= std::numeric_limits<int>::max() && number == std::trunc(number) &&
               option.range.holds(static_cast<int>(number));
    } else {
        return option.range.holds(number);
    }
}

/// Gives an option the value of an argument.
///
/// @return false if it cannot have it
template <typename Number>
bool assign(const FitOption<Number>& option, const Argument& argument) {
    const auto* const text = std::get_if<std::string>(&argument);
    if (option.automatic != nullptr) {
        *option.automatic = text != nullptr && *text == "auto";
        if (option.isAutomatic()) {
            return true;
        }
    }
    const auto* const numbers = std::get_if<std::vector<double>>(&argument);
    if (numbers == nullptr || numbers->size() != 1 || !holds(option, numbers->front())) {
        return false;
    }
    option.value = static_cast<Number>(numbers->front());
    return true;
}

template <typename Kind>
bool assign(const FitChoice<Kind>& option, const Argument& argument) {
    const auto* const name = std::get_if<std::string>(&argument);
    return name != nullptr && option.set(*name);
}

inline bool assign(const FitList<NumberList>& option, const Argument& argument) {
    const auto* const numbers = std::get_if<std::vector<double>>(&argument);
    if (numbers == nullptr || numbers->size() > NumberList::kMost) {
        return false;
    }
    option.value = {};
    for (const double number : *numbers) {
        option.value.add(number);
    }
    return option.isInRange();
}

/// The value of an option as R has it.
template <typename Option>
Argument value_of(const Option& option) {
    if constexpr (requires { option.value.begin(); }) {
        return std::vector<double>(option.value.begin(), option.value.end());
    } else if constexpr (requires { option.isAutomatic(); }) {
        return option.isAutomatic()
                   ? Argument("auto")
                   : Argument(std::vector<double>{static_cast<double>(option.value)});
    } else {
        return std::string(option.name());
    }
}

/// The options with the arguments that `argument_of(name)` gives.
///
/// @param is_given  whether there is an argument of a name
template <typename IsGiven, typename ArgumentOf>
FitOptions options_with(const IsGiven& is_given, const ArgumentOf& argument_of) {
    FitOptions options;
    visit_fit_options(options, [&](const auto& option) {
        const std::string name = r_name(option.words);
        if (is_given(name)) {
            static_cast<void>(assign(option, argument_of(name)));
        }
    });
    return options;
}

}  // namespace ovik::r
