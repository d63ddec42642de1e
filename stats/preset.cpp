#include "stats/preset.h"

#include <type_traits>

#include "stats/option_texts.h"

namespace ovik {

namespace {

/// Gives an option the value of another one.
template <typename Option, typename Other>
void copy_option(const Option& to, const Other& from) {
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(to.value)>,
                                 std::remove_cvref_t<decltype(from.value)>>) {
        to.value = from.value;
        if constexpr (requires { to.automatic; }) {
            if (to.automatic != nullptr) {
                *to.automatic = *from.automatic;
            }
        }
    }
}

/// Gives an option the value that the option of its name has.
template <typename Option>
void take_over(const Option& to, const FitOptions& given) {
    visit_fit_options(given, [&to](const auto& from) {
        if (from.words.name == to.words.name) {
            copy_option(to, from);
        }
    });
}

}  // namespace

// Lower costs can be had, for maps that keep fewer neighbours: docs/better-map.md.
FitOptions refined_options(std::size_t /*rows*/) {
    FitOptions options;
    options.start = StartKind::Pca;
    options.schedule = ScheduleKind::Annealed;
    options.exaggeration = 4.0;
    options.automatic_rate = true;
    options.final_momentum = 0.95;
    options.numerics = NumericsKind::Portable;
    return options;
}

FitOptions preset_options(PresetKind preset, std::size_t rows) {
    return preset == PresetKind::Refined ? refined_options(rows) : FitOptions();
}

FitOptions with_preset(PresetKind preset,
                       std::size_t rows,
                       const FitOptions& given,
                       const std::function<bool(std::string_view name)>& is_given) {
    FitOptions options = preset_options(preset, rows);
    visit_fit_options(options, [&](const auto& to) {
        if (is_given(to.words.name)) {
            take_over(to, given);
        }
    });
    // Distances have no components that the points could start from.
    if (options.metric == MetricKind::Precomputed && !is_given("start")) {
        options.start = StartKind::Random;
    }
    return options;
}

std::string preset_changes(PresetKind preset, std::size_t rows) {
    const FitOptions options = preset_options(preset, rows);
    std::string text;
    visit_fit_options(options, [&](const auto& option) {
        if (!option.isPreset()) {
            text += text.empty() ? "" : ", ";
            text += long_name(option.words) + " " + value_text(option);
        }
    });
    return text;
}

}  // namespace ovik
