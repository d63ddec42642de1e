#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <ovik/stats/fit_options.h>
#include <string>
#include <type_traits>

namespace ovik::r {

/// What R calls an option: as the command does, in snake case.
inline std::string r_name(const OptionWords& words) {
    const std::string flags(words.flags);
    std::string name = flags.substr(flags.find("--") + 2);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

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

/// The options with the numbers that `number_of(name)` gives.
template <typename NumberOf>
FitOptions options_with(const NumberOf& number_of) {
    FitOptions options;
    visit_fit_options(options, [&](auto option) {
        using Number = typename decltype(option)::Number;
        option.value = static_cast<Number>(number_of(r_name(option.words)));
    });
    return options;
}

}  // namespace ovik::r
