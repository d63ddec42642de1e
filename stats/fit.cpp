#include "stats/fit.h"

#include <ctime>
#include <memory>
#include <optional>
#include <stdexcept>

#include "stats/centring.h"
#include "stats/fit_checks.h"
#include "stats/gradient_descent.h"
#include "stats/method.h"
#include "stats/normal_deviates.h"
#include "stats/optimisation.h"
#include "stats/row_metric.h"
#include "util/random_stream.h"
#include "util/stopwatch.h"

namespace ovik {

namespace {

/// @throws std::invalid_argument if the state is one of another shape
void check_resumed_state(const FitState* state, std::size_t count) {
    if (state != nullptr && (state->embedding.size() != count || state->velocity.size() != count ||
                             state->gains.size() != count)) {
        throw std::invalid_argument("the state to go on from is of an embedding of another shape");
    }
}

/// Brings rows into the form whose Euclidean distances are those of the metric. Distances stay as
/// they are.
InputScale prepare_input(MatrixView<double> X, MetricKind metric) {
    if (metric == MetricKind::Precomputed) {
        return {};
    }
    prepare_rows(X, metric);
    return centre_and_scale(X);
}

/// Iterates until the last iteration, or until a hook ends the fit.
void iterate(Optimisation& optimisation, const FitHooks& hooks, FitReport& report) {
    bool goes_on = true;
    while (goes_on && !optimisation.isDone()) {
        optimisation.iterate();
        report.costs.push_back(optimisation.state().reached.cost);
        goes_on = !hooks.on_iteration || hooks.on_iteration(optimisation.state());
    }
}

}  // namespace

FitReport fit_into(MatrixView<double> Y,
                   MatrixView<double> X,
                   const FitOptions& options,
                   const FitHooks& hooks,
                   const Method& method,
                   RandomStream* random) {
    check_resumed_state(hooks.resumed_state, Y.size());
    check_metric(X, options, {});
    OwnRandomStream own_stream;
    RandomStream& stream = random != nullptr ? *random : own_stream;
    stream.seed(static_cast<unsigned int>(options.seed));
    std::optional<GradientDescent> descent(std::in_place, Y.size(), options.gains);
    tell(hooks.on_note, FitNote::SimilaritiesBegin);
    FitReport report;
    const std::clock_t start = std::clock();
    Stopwatch watch;
    report.scale = prepare_input(X, options.metric);
    std::unique_ptr<Objective> objective =
        method.make({X,
                     options,
                     hooks.on_note,
                     hooks.cached_neighbours,
                     hooks.wants_neighbours ? &report.neighbours : nullptr,
                     stream});
    const std::clock_t similarities_end = std::clock();
    report.seconds.similarities = watch.lap();
    const Schedule schedule(options, X.rows);
    objective->exaggerate(schedule.exaggeration());
    draw_initial_embedding(Y.values, Y.size(), options.start_spread, stream);
    if (hooks.on_similarities) {
        hooks.on_similarities(objective->report(similarities_end - start));
    }
    const std::clock_t fitting_start = std::clock();
    Optimisation optimisation(*objective, *descent, Y, schedule);
    if (hooks.resumed_state != nullptr) {
        optimisation.resume(*hooks.resumed_state);
    }
    iterate(optimisation, hooks, report);
    report.reached = optimisation.state().reached;
    report.final_cost = optimisation.finalCost();
    report.fitting_clock = std::clock() - fitting_start;
    descent.reset();
    objective.reset();
    report.seconds.fitting = watch.lap();
    return report;
}

FitReport fit_into(MatrixView<double> Y,
                   MatrixView<double> X,
                   const FitOptions& options,
                   const FitHooks& hooks) {
    return fit_into(Y, X, options, hooks, method_of(options));
}

Fit fit(MatrixView<double> X, const FitOptions& options, const FitHooks& hooks) {
    if (options.out_dims < 0) {
        throw std::length_error("the embedding has a negative number of dimensions");
    }
    const auto dims = static_cast<std::size_t>(options.out_dims);
    Fit result;
    result.embedding.resize(X.rows * dims);
    result.report = fit_into({result.embedding.data(), X.rows, dims}, X, options, hooks);
    return result;
}

}  // namespace ovik
