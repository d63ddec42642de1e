#pragma once

#include <type_traits>

#include <climits>

#include "stats/fit_choices.h"
#include "stats/fit_option.h"
#include "stats/number_list.h"

/// The numbers, choices and lists that shape a map: each with its default, range, unit and meaning,
/// in this place alone. Command line, manual page, completions, Python parameters, reports, the
/// page's footer and the identity of checkpoints are made by visiting them.

namespace ovik {

/// What a map is made by, beside the matrix: the classical run as it stands here. Two fits of one
/// matrix with equal options give the same bytes.
struct FitOptions {
    double perplexity = 20.0;
    double theta = 0.5;
    MethodKind method = MethodKind::Auto;
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
    /// Principal components in the place of the columns; 0 for the columns themselves.
    int pca = 0;
    AffinityKind affinity = AffinityKind::Perplexity;
    /// Of uniform affinities.
    int neighbours = 15;
    /// Perplexities whose affinities are averaged; empty for the one of `perplexity`.
    NumberList multiscale = {};
    NeighbourSearchKind neighbour_search = NeighbourSearchKind::Exact;
    StartKind start = StartKind::Random;
    ScheduleKind schedule = ScheduleKind::Classic;
    /// Of the annealed schedule.
    int hold_iter = 125;
    int release_iter = 125;
    GainKind gains = GainKind::Adaptive;
    /// Whether the learning rate follows from the number of rows, whatever `learning_rate` is.
    bool automatic_rate = false;
    /// 0 for a fit that goes on to its last iteration.
    double stop_when = 0.0;
    NumericsKind numerics = NumericsKind::Platform;
};

/// Calls `visit` with each option in turn: a `FitOption`, `FitChoice` or `FitList`.
///
/// @param options  `FitOptions` or `const FitOptions`; what is called `value` refers to its members
template <typename Options, typename Visitor>
// NOLINTNEXTLINE(readability-function-size): a list, of one entry per option
void visit_fit_options(Options& options, Visitor&& visit) {
    constexpr FitOptions kPreset;
    using Rate = ConstAs<double, Options>;
    const auto option = [&visit](auto& value, auto preset, auto range, const OptionWords& words) {
        visit(FitOption<std::remove_reference_t<decltype(value)>>{value, preset, range, words});
    };
    const auto choice =
        [&visit](auto& value, auto preset, const OptionWords& words, std::string_view end = "") {
            visit(FitChoice<std::remove_reference_t<decltype(value)>>{value, preset, words, end});
        };
    option(options.perplexity,
           kPreset.perplexity,
           OptionRange<double>{.least = 1.0, .most = 1e9},
           {.name = "perplexity",
            .python = "perplexity",
            .flags = "-p,--perplexity",
            .title = "Perplexity",
            .sentence = "Effective number of neighbours of a row",
            .unit = "neighbours",
            .is_always_told = true});
    option(options.theta,
           kPreset.theta,
           OptionRange<double>{.least = 0.0},
           {.name = "theta",
            .python = "theta",
            .flags = "-t,--theta",
            .title = "Theta",
            .sentence = "Accuracy of the Barnes-Hut method, or 0 for the exact method",
            .is_always_told = true});
    choice(options.method,
           kPreset.method,
           {.name = "method",
            .python = "method",
            .flags = "--method",
            .title = "Forces",
            .sentence = "How forces are computed; auto goes by theta"});
    option(options.out_dims,
           kPreset.out_dims,
           OptionRange<int>{.least = 2, .most = 50},
           {.name = "dimensions",
            .python = "n_components",
            .flags = "-d,--dims",
            .title = "Output dimensions",
            .sentence = "Dimensions of the embedding",
            .is_always_told = true});
    option(options.max_iter,
           kPreset.max_iter,
           OptionRange<int>{.least = 1, .most = 1'000'000'000},
           {.name = "max_iter",
            .python = "n_iter",
            .flags = "-i,--max-iter",
            .title = "Iteration limit",
            .sentence = "Last iteration, counted from 0",
            .unit = "iterations",
            .decides_states = false,
            .is_always_told = true});
    option(options.stop_lying_iter,
           kPreset.stop_lying_iter,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "stop_lying_iter",
            .python = "stop_lying_iter",
            .flags = "--stop-lying-iter",
            .title = "End of early exaggeration",
            .sentence = "Iteration at which early exaggeration ends",
            .unit = "iterations",
            .is_always_told = true});
    option(options.mom_switch_iter,
           kPreset.mom_switch_iter,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "mom_switch_iter",
            .python = "mom_switch_iter",
            .flags = "--mom-switch-iter",
            .title = "Momentum switch",
            .sentence = "Iteration after which the momentum is the final one",
            .unit = "iterations",
            .is_always_told = true});
    option(options.seed,
           kPreset.seed,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "seed",
            .python = "seed",
            .flags = "--seed",
            .title = "Random seed",
            .sentence = "Seed of the random start and of the neighbour search",
            .is_always_told = true});
    visit(FitOption<Rate>{options.learning_rate,
                          kPreset.learning_rate,
                          OptionRange<double>{.least = 0.0, .most = 1e9, .holds_least = false},
                          {.name = "learning_rate",
                           .python = "learning_rate",
                           .flags = "--learning-rate",
                           .title = "Learning rate",
                           .sentence = "Length of a step, times gain and gradient",
                           .is_always_told = true},
                          &options.automatic_rate});
    option(options.exaggeration,
           kPreset.exaggeration,
           OptionRange<double>{.least = 1.0, .most = 1e6},
           {.name = "exaggeration",
            .python = "exaggeration",
            .flags = "--exaggeration",
            .title = "Early exaggeration",
            .sentence = "Factor of the similarities until early exaggeration ends",
            .is_always_told = true});
    option(options.start_spread,
           kPreset.start_spread,
           OptionRange<double>{.least = 0.0, .most = 1e6, .holds_least = false},
           {.name = "start_spread",
            .python = "start_spread",
            .flags = "--start-spread",
            .title = "Spread of the start",
            .sentence = "Standard deviation of a start, where it is widest, but for coordinates",
            .is_always_told = true});
    option(options.momentum,
           kPreset.momentum,
           OptionRange<double>{.least = 0.0, .most = 1.0, .holds_most = false},
           {.name = "momentum",
            .python = "momentum",
            .flags = "--momentum",
            .title = "Momentum",
            .sentence = "Share of a step that the next one repeats, before the momentum switch",
            .is_always_told = true});
    option(options.final_momentum,
           kPreset.final_momentum,
           OptionRange<double>{.least = 0.0, .most = 1.0, .holds_most = false},
           {.name = "final_momentum",
            .python = "final_momentum",
            .flags = "--final-momentum",
            .title = "Final momentum",
            .sentence = "Share of a step that the next one repeats, after the momentum switch",
            .is_always_told = true});
    choice(options.metric,
           kPreset.metric,
           {.name = "metric",
            .python = "metric",
            .flags = "--metric",
            .title = "Metric",
            .sentence = "Distance between rows"});
    option(options.pca,
           kPreset.pca,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "pca",
            .python = "pca",
            .flags = "--pca",
            .title = "Principal components",
            .sentence = "Principal components in the place of the columns, or 0 for the columns"});
    choice(options.affinity,
           kPreset.affinity,
           {.name = "affinity",
            .python = "affinity",
            .flags = "--affinity",
            .title = "Affinities",
            .sentence = "Similarities of a row with its neighbours"});
    option(options.neighbours,
           kPreset.neighbours,
           OptionRange<int>{.least = 1, .most = INT_MAX},
           {.name = "neighbours",
            .python = "neighbours",
            .flags = "--neighbours",
            .title = "Neighbours",
            .sentence = "Nearest neighbours that get uniform affinities",
            .unit = "neighbours"});
    visit(FitList<ConstAs<NumberList, Options>>{
        options.multiscale,
        OptionRange<double>{.least = 1.0, .most = 1e9},
        {.name = "multiscale",
         .python = "multiscale",
         .flags = "--multiscale",
         .title = "Perplexities in one",
         .sentence = "Perplexities whose affinities are averaged"}});
    choice(options.neighbour_search,
           kPreset.neighbour_search,
           {.name = "neighbour_search",
            .python = "neighbour_search",
            .flags = "--neighbour-search",
            .title = "Neighbour search",
            .sentence = "Whether all nearest neighbours are found, or nearly all in less time"});
    choice(options.start,
           kPreset.start,
           {.name = "start",
            .python = "init",
            .flags = "--start",
            .title = "Start",
            .sentence = "Where the points of the map start"},
           "coordinates");
    choice(options.schedule,
           kPreset.schedule,
           {.name = "schedule",
            .python = "schedule",
            .flags = "--schedule",
            .title = "Schedule",
            .sentence = "Course of exaggeration, momentum and learning rate"});
    option(options.hold_iter,
           kPreset.hold_iter,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "hold_iter",
            .python = "hold_iter",
            .flags = "--hold-iter",
            .title = "Full exaggeration",
            .sentence = "Iterations at full exaggeration, of the annealed schedule",
            .unit = "iterations"});
    option(options.release_iter,
           kPreset.release_iter,
           OptionRange<int>{.least = 0, .most = INT_MAX},
           {.name = "release_iter",
            .python = "release_iter",
            .flags = "--release-iter",
            .title = "Falling exaggeration",
            .sentence = "Iterations in which exaggeration then falls to 1",
            .unit = "iterations"});
    choice(options.gains,
           kPreset.gains,
           {.name = "gains",
            .python = "gains",
            .flags = "--gains",
            .title = "Gains",
            .sentence = "Factor of each coordinate's learning rate"});
    option(
        options.stop_when,
        kPreset.stop_when,
        OptionRange<double>{.least = 0.0, .most = 1.0, .holds_most = false},
        {.name = "stop_when",
         .python = "stop_when",
         .flags = "--stop-when",
         .title = "Least gain",
         .sentence = "Share of the cost that 50 iterations have to gain for the fit to go on, or 0",
         .decides_states = false});
    choice(options.numerics,
           kPreset.numerics,
           {.name = "numerics",
            .python = "numerics",
            .flags = "--numerics",
            .title = "Numerics",
            .sentence = "Whether the map is bound to this platform, or the same on every machine"});
}

}  // namespace ovik
