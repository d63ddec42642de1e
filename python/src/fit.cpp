#include "python/src/fit.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/matrix_checks.h"
#include "stats/cached_neighbours.h"
#include "stats/fit_console.h"
#include "stats/given_neighbours.h"
#include "stats/row_reliability.h"
#include "stats/run_caption.h"
#include "stats/schedule.h"
#include "stats/seed_fits.h"
#include "util/console.h"
#include "util/threads.h"

namespace ovik::python {

namespace {

/// The engine's own copy, which it centres and scales.
///
/// @throws InputError if the values cannot be embedded
std::unique_ptr<double[]> checked_copy(MatrixView<const double> points) {
    InspectedMatrix matrix;
    matrix.report.rows = points.rows;
    matrix.report.columns = points.columns;
    matrix.values.reset(new double[points.size()]);
    std::copy_n(points.values, points.size(), matrix.values.get());
    check_values("X", matrix);
    return std::move(matrix.values);
}

/// @throws std::runtime_error if the embedding is of no use
void require_finite(const IterationReport& reached) {
    if (!reached.finite) {
        throw std::runtime_error("the embedding got out of range at iteration " +
                                 std::to_string(reached.iteration) +
                                 "\nBring the columns of X to a common scale, or choose another "
                                 "perplexity.");
    }
}

bool is_due(const FitManner& manner, const FitState& state) {
    return manner.callback &&
           (state.isLast() || state.reached.iteration % manner.callback_every == 0);
}

/// Goes on from an iteration, or not.
///
/// @throws std::runtime_error if the embedding is of no use, or not wanted
bool goes_on(const FitState& state,
             const FitManner& manner,
             const std::atomic<bool>& is_interrupted,
             Outcome& outcome) {
    require_finite(state.reached);
    const bool stops = !is_interrupted && is_due(manner, state) && manner.callback(state);
    if (is_interrupted && !manner.keeps_interrupted) {
        throw std::runtime_error("interrupted");
    }
    outcome.is_interrupted = is_interrupted;
    return !stops && !outcome.is_interrupted;
}

/// The fit of lowest cost of several seeds.
Fit fit_seeds(MatrixView<double> X,
              const FitOptions& options,
              const FitManner& manner,
              const FitHooks& hooks) {
    Fit kept;
    const auto dims = static_cast<std::size_t>(options.out_dims);
    kept.embedding.resize(X.rows * dims);
    const MatrixView<double> Y{kept.embedding.data(), X.rows, dims};
    kept.report = fit_seeds_into(Y, X, options, {.count = manner.seeds}, hooks);
    return kept;
}

/// The seed of the map that was kept.
int seed_of(const FitOptions& options, const FitReport& report) {
    return report.seeds ? report.seeds->runs[report.seeds->kept].seed : options.seed;
}

/// @param X  as the fit left it: prepared for the metric, as the command has it
NeighbourhoodQuality quality_of(MatrixView<const double> X,
                                const Fit& fit,
                                const FitOptions& options,
                                std::size_t neighbours,
                                const OnStage& on_stage) {
    const MatrixView<const double> Y{
        fit.embedding.data(), X.rows, static_cast<std::size_t>(options.out_dims)};
    return options.metric == MetricKind::Precomputed
               ? neighbourhood_quality_of_distances(X, Y, {neighbours}, on_stage).front()
               : neighbourhood_quality(X, Y, {neighbours}, on_stage).front();
}

/// @param X  as of `quality_of`
RowReliability reliability_of(MatrixView<const double> X,
                              const Fit& fit,
                              const FitOptions& options,
                              const OnStage& on_stage) {
    const MatrixView<const double> Y{
        fit.embedding.data(), X.rows, static_cast<std::size_t>(options.out_dims)};
    std::vector<std::size_t> sizes = {10, 30};
    std::erase_if(sizes, [&X](std::size_t size) { return 2 * size >= X.rows; });
    const bool holds_distances = options.metric == MetricKind::Precomputed;
    return row_reliability(row_neighbourhoods(X, Y, sizes, kNearRows, holds_distances, on_stage),
                           fit.report.row_costs,
                           fit.report.row_misfits);
}

/// Measures what is asked for of the embedding of an outcome.
void look_at(Outcome& outcome,
             MatrixView<const double> X,
             const FitOptions& options,
             const FitManner& manner,
             const OnStage& on_stage) {
    if (manner.quality_neighbours > 0) {
        outcome.quality = quality_of(X, outcome.fit, options, manner.quality_neighbours, on_stage);
    }
    if (manner.wants_reliability) {
        outcome.reliability = reliability_of(X, outcome.fit, options, on_stage);
    }
}

}  // namespace

Outcome run_fit(MatrixView<const double> points,
                const FitOptions& options,
                const FitManner& manner,
                const std::atomic<bool>& is_interrupted) {
    Outcome outcome;
    outcome.threads_note = set_thread_count(manner.threads);
    std::unique_ptr<double[]> X = checked_copy(points);
    FitHooks hooks;
    hooks.wants_row_costs = manner.wants_reliability;
    hooks.start = {manner.start, points.rows, static_cast<std::size_t>(options.out_dims)};
    std::shared_ptr<CachedNeighbours> neighbours;
    if (manner.neighbours != nullptr) {
        outcome.neighbours_note = check_given_neighbours(
            *manner.neighbours, options, "neighbour_graph", 0, manner.quality_neighbours > 0);
        neighbours = make_given_neighbours(*manner.neighbours);
        hooks.cached_neighbours = neighbours.get();
    }
    hooks.on_iteration = [&](const FitState& state) {
        if (manner.verbose) {
            print_progress<double>(state.reached);
        }
        return goes_on(state, manner, is_interrupted, outcome);
    };
    // Of what is kept there is nothing before the first iteration.
    const auto require_going_on = [&] {
        if (is_interrupted && !manner.keeps_interrupted) {
            throw std::runtime_error("interrupted");
        }
    };
    hooks.on_stage = [&](Stage /*stage*/, std::uint64_t /*done*/, std::uint64_t /*total*/) {
        require_going_on();
    };
    hooks.on_sample_iteration = [&](const FitState& /*state*/) {
        require_going_on();
        return !is_interrupted;
    };
    if (manner.verbose) {
        hooks.on_recall = &print_recall;
        hooks.on_sample = &print_sample;
        print_launch(options, static_cast<int>(points.rows));
        hooks.on_note = console_notes(options);
        hooks.on_similarities = [](const std::string& message) { print_info(message); };
        hooks.on_components = [&](double share) {
            print_components(options.pca, static_cast<int>(points.columns), share);
        };
    }
    outcome.fit = manner.seeds > 1
                      ? fit_seeds({X.get(), points.rows, points.columns}, options, manner, hooks)
                      : fit({X.get(), points.rows, points.columns}, options, hooks);
    if (manner.verbose) {
        print_end_of_iterations(outcome.fit.report.reached);
        print_fitting_time(outcome.fit.report.fitting_clock);
        std::fflush(stdout);
    }
    if (outcome.fit.report.search_became_exact) {
        outcome.neighbours_note +=
            std::string(outcome.neighbours_note.empty() ? "" : "; ") +
            "all neighbours were searched for, since rows of more than 8380 columns, or of values "
            "too large or too small, cannot be searched approximately";
    }
    const Schedule schedule(options, points.rows);
    const int last = outcome.fit.report.reached.iteration;
    outcome.learning_rate = schedule.learningRate(last);
    outcome.is_past_exaggeration = last >= schedule.endOfExaggeration();
    FitOptions kept = options;
    kept.seed = outcome.seed = seed_of(options, outcome.fit.report);
    outcome.caption = caption_parameters(kept, points.rows, points.columns, outcome.fit.report);
    look_at(outcome, {X.get(), points.rows, points.columns}, options, manner, hooks.on_stage);
    if (outcome.threads_note.empty()) {
        outcome.threads_note = denied_threads_note();
    }
    outcome.input = std::move(X);
    return outcome;
}

}  // namespace ovik::python
