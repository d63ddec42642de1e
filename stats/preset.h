#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "stats/fit_choices.h"
#include "stats/fit_options.h"
#include "util/api.h"

/// Options that belong together, by one name.

namespace ovik {

enum class PresetKind {
    /// The options as they stand in `FitOptions`.
    Classic,
    /// What gives better and more stable maps of expression data, in less time.
    Refined,
};

template <>
inline constexpr std::array<std::string_view, 2> kChoiceNames<PresetKind>{"classic", "refined"};

/// What refined stands for.
///
/// @param rows  of the matrix; numbers may depend on it, choices never do
OVIK_API FitOptions refined_options(std::size_t rows);

/// What a preset stands for, for a matrix of so many rows.
OVIK_API FitOptions preset_options(PresetKind preset, std::size_t rows);

/// The options of a preset with those in their place that a user has given.
///
/// @param given     the options that are given; the others of it are not looked at
/// @param is_given  whether the option of a name is
OVIK_API FitOptions with_preset(PresetKind preset,
                                std::size_t rows,
                                const FitOptions& given,
                                const std::function<bool(std::string_view name)>& is_given);

/// What a preset changes of the classical run, in words: "schedule annealed, start pca".
///
/// @param rows  of the matrix
OVIK_API std::string preset_changes(PresetKind preset, std::size_t rows);

}  // namespace ovik
