#pragma once

#include <optional>
#include <string_view>

#include "stats/fit_options.h"
#include "util/api.h"

/// Which options of a fit have an effect beside the others.

namespace ovik {

/// Why an option has no effect: the value of another one.
struct OptionBar {
    /// Name of the option that has none.
    std::string_view option;
    /// Name of the other option.
    std::string_view other;
    /// The value of the other one that gives the option its effect; empty where it has to be none.
    std::string_view cure;
    bool (*is_up)(const FitOptions& options);
};

/// What takes the effect of an option away; none if it has its effect.
///
/// @param name  of the option
OVIK_API std::optional<OptionBar> bar_of(const FitOptions& options, std::string_view name);

/// Whether page and checkpoint of a run have an option.
///
/// @param option  one of `options`, as it is visited
template <typename Option>
bool is_told(const FitOptions& options, const Option& option) {
    const std::string_view name = option.words.name;
    return !bar_of(options, name) && (option.words.is_always_told || !option.isPreset() ||
                                      bar_of(FitOptions(), name).has_value());
}

}  // namespace ovik
