#pragma once

#include <limits>
#include <string_view>
#include <type_traits>

#include <climits>

#include "stats/fit_choices.h"

/// The numbers that shape a map: each with its default, range, unit and meaning, in this place
/// alone. Command line, manual page, completions, Python parameters, reports, the page's footer and
/// the identity of checkpoints are made by visiting them.

namespace ovik {

/// What a map is made by, beside the matrix. Two fits of one matrix with equal options give the
/// same bytes.
struct FitOptions {
    double perplexity = 20.0;
    double theta = 0.5;
    int out_dims = 2;
    int max_iter = 1000;
    int stop_lying_iter = 250;
    int mom_switch_iter = 250;
    int seed = 11;
    double learning_rate = 200.0;
    double exaggeration = 12.0;
    double start_spread = 0.0001;
    double momentum = 0.5;
    double final_momentum = 0.8;
    MetricKind metric = MetricKind::Euclidean;
};

/// What front ends call an option, and what they say of it.
struct OptionWords {
    /// In reports and checkpoints.
    std::string_view name;
    /// Of the Python parameter.
    std::string_view python;
    /// Of the command, separated by a comma.
    std::string_view flags;
    /// On the chart page.
    std::string_view title;
    /// One sentence, without a full stop.
    std::string_view sentence;
    /// What the number counts; empty for a plain number.
    std::string_view unit = "";
    /// Whether the states that a fit goes through depend on it, and not only which is the last.
    bool decides_states = true;
};

/// The numbers that an option may have. Whether the ends belong to them is said for real numbers.
template <typename T>
struct OptionRange {
    T least;
    T most = std::numeric_limits<T>::max();
    bool holds_least = true;
    bool holds_most = true;

    /// False for NaN and infinities.
    [[nodiscard]] constexpr bool holds(T value) const {
        return (holds_least ? value >= least : value > least) &&
               (holds_most ? value <= most : value < most);
    }
};

/// One of the options, of which `Value` is the type: `double` or `int`, or either of them const.
template <typename Value>
struct FitOption {
    using Number = std::remove_const_t<Value>;

    Value& value;
    Number preset;
    OptionRange<Number> range;
    OptionWords words;

    [[nodiscard]] bool isInRange() const { return range.holds(value); }
};

/// Calls `visit(FitOption)` with each option in turn.
///
/// @param options  `FitOptions` or `const FitOptions`; `FitOption::value` refers to its members
template <typename Options, typename Visitor>
// NOLINTNEXTLINE(readability-function-size): a list, of one entry per option
void visit_fit_options(Options& options, Visitor&& visit) {
    constexpr FitOptions kPreset;
    const auto option = [&visit](auto& value, auto preset, auto range, const OptionWords& words) {
        visit(FitOption<std::remove_reference_t<decltype(value)>>{value, preset, range, words});
    };
    option(options.perplexity,
           kPreset.perplexity,
           OptionRange<double>{.least = 1.0, .most = 1e9},
           {.name = "perplexity",
            .python = "perplexity",
            .flags = "-p,--perplexity",
            .title = "Perplexity",
            .sentence = "Effective number of neighbours of a row",
            .unit = "neighbours"});
    option(options.theta,
           kPreset.theta,
           OptionRange<double>{.least = 0.0},
           {.name = "theta",
            .python = "theta",
            .flags = "-t,--theta",
            .title = "Theta",
            .sentence = "Accuracy of the Barnes-Hut method, or 0 for the exact method"});
    option(options.out_dims,
           kPreset.out_dims,
           OptionRange<int>{.least = 2, .most = 50},
           {.name = "dimensions",
            .python = "n_components",
            .flags = "-d,--dims",
            .title = "Output dimensions",
            .sentence = "Dimensions of the embedding"});
    option(options.max_iter,
           kPreset.max_iter,
           OptionRange<int>{.least = 1, .most = 1'000'000'000},
           {.name = "max_iter",
            .python = "n_iter",
            .flags = "-i,--max-iter",
            .title = "Iteration limit",
            .sentence = "Last iteration, counted from 0",
            .unit = "iterations",
            .decides_states = false});
    option(options.stop_lying_iter,
           kPreset.stop_lying_iter,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "stop_lying_iter",
            .python = "stop_lying_iter",
            .flags = "--stop-lying-iter",
            .title = "End of early exaggeration",
            .sentence = "Iteration at which early exaggeration ends",
            .unit = "iterations"});
    option(options.mom_switch_iter,
           kPreset.mom_switch_iter,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "mom_switch_iter",
            .python = "mom_switch_iter",
            .flags = "--mom-switch-iter",
            .title = "Momentum switch",
            .sentence = "Iteration after which the momentum is the final one",
            .unit = "iterations"});
    option(options.seed,
           kPreset.seed,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "seed",
            .python = "seed",
            .flags = "--seed",
            .title = "Random seed",
            .sentence = "Seed of the random start and of the neighbour search"});
    option(options.learning_rate,
           kPreset.learning_rate,
           OptionRange<double>{.least = 0.0, .most = 1e9, .holds_least = false},
           {.name = "learning_rate",
            .python = "learning_rate",
            .flags = "--learning-rate",
            .title = "Learning rate",
            .sentence = "Length of a step, times gain and gradient"});
    option(options.exaggeration,
           kPreset.exaggeration,
           OptionRange<double>{.least = 1.0, .most = 1e6},
           {.name = "exaggeration",
            .python = "exaggeration",
            .flags = "--exaggeration",
            .title = "Early exaggeration",
            .sentence = "Factor of the similarities until early exaggeration ends"});
    option(options.start_spread,
           kPreset.start_spread,
           OptionRange<double>{.least = 0.0, .most = 1e6, .holds_least = false},
           {.name = "start_spread",
            .python = "start_spread",
            .flags = "--start-spread",
            .title = "Spread of the start",
            .sentence = "Standard deviation of the random start"});
    option(options.momentum,
           kPreset.momentum,
           OptionRange<double>{.least = 0.0, .most = 1.0, .holds_most = false},
           {.name = "momentum",
            .python = "momentum",
            .flags = "--momentum",
            .title = "Momentum",
            .sentence = "Share of a step that the next one repeats, before the momentum switch"});
    option(options.final_momentum,
           kPreset.final_momentum,
           OptionRange<double>{.least = 0.0, .most = 1.0, .holds_most = false},
           {.name = "final_momentum",
            .python = "final_momentum",
            .flags = "--final-momentum",
            .title = "Final momentum",
            .sentence = "Share of a step that the next one repeats, after the momentum switch"});
}

}  // namespace ovik
