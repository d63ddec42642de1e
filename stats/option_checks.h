#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "stats/fit_options.h"
#include "util/api.h"

/// Checks of options beside each other and beside the input.

namespace ovik {

/// Where options come from: what a user gave, and how messages write it, so that it can be copied.
struct OptionSource {
    /// Whether the user gave the option of a name.
    std::function<bool(std::string_view name)> is_given;
    /// An option with a value, "--schedule annealed", or alone, where the value is empty.
    std::function<std::string(const OptionWords& words, const std::string& value)> spell;
    /// The user's preset as messages write it, where an option with its default counts as not
    /// given, so that what the preset stands for is undone without the preset alone; else empty.
    std::string lasting_preset = {};
};

/// The source of programs that set `FitOptions`: given is what is not as preset.
OVIK_API OptionSource source_of(const FitOptions& options);

/// Refuses options that do not fit each other: those that are given and have no effect beside
/// others, and a start that the metric does not have.
///
/// @throws InputError with the cure
OVIK_API void check_options_together(const FitOptions& options, const OptionSource& source);

/// Refuses options that a matrix cannot bear: neighbours or perplexities as many as other rows, no
/// fewer principal components than columns or rows, a start along fewer than the map has
/// dimensions.
///
/// @param rows     of the matrix
/// @param columns  of the matrix
/// @throws InputError with the cure
OVIK_API void check_options_for(const FitOptions& options,
                                std::size_t rows,
                                std::size_t columns,
                                const OptionSource& source);

}  // namespace ovik
