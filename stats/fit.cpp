#include "stats/fit.h"

#include <algorithm>
#include <ctime>
#include <memory>
#include <optional>
#include <stdexcept>

#include "stats/centring.h"
#include "stats/embedding_start.h"
#include "stats/fit_checks.h"
#include "stats/gradient_descent.h"
#include "stats/method.h"
#include "stats/normal_deviates.h"
#include "stats/optimisation.h"
#include "stats/principal_components.h"
#include "stats/row_metric.h"
#include "util/input_error.h"
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

/// @throws InputError if places of another shape are given
void check_start(const FitOptions& options, const FitHooks& hooks, MatrixView<const double> Y) {
    if (options.start == StartKind::Given &&
        (hooks.start.values == nullptr || hooks.start.rows != Y.rows ||
         hooks.start.columns != Y.columns)) {
        throw InputError("the start should give a place to each of the " + std::to_string(Y.rows) +
                         " rows in " + std::to_string(Y.columns) +
                         " dimensions\nGive it in this shape, with NaN for rows without a place.");
    }
}

/// The principal components that are to stand for the columns, if any are.
std::optional<PrincipalComponents> reduced_columns(MatrixView<const double> X,
                                                   const FitOptions& options,
                                                   const FitHooks& hooks,
                                                   FitReport& report) {
    if (options.pca <= 0) {
        return std::nullopt;
    }
    const auto count = static_cast<std::size_t>(options.pca);
    if (count > std::min(X.rows, X.columns)) {
        throw std::invalid_argument("there are fewer rows or columns than principal components");
    }
    PrincipalComponents components = principal_components(X, count);
    report.variance_kept = components.varianceKept();
    if (hooks.on_components) {
        hooks.on_components(*report.variance_kept);
    }
    return components;
}

/// The rows that a fit embeds, and how they start.
class Rows {
  public:
    /// @param X  centred and scaled; read while the object is used
    Rows(MatrixView<const double> X,
         const FitOptions& options,
         const FitHooks& hooks,
         FitReport& report)
        : X_(X),
          options_(options),
          places_(hooks.start),
          components_(reduced_columns(X, options, hooks, report)),
          needs_neighbours_(options.start == StartKind::Given && has_rows_without_place(places_)) {}

    /// The rows as the method sees them.
    [[nodiscard]] MatrixView<const double> view() const {
        return components_ ? components_->scoresView() : X_;
    }

    /// Whether the start depends on the neighbours of the rows.
    [[nodiscard]] bool needNeighbours() const { return needs_neighbours_; }

    /// Writes the start of the embedding.
    ///
    /// @param graph  of the method, empty if that searches for no neighbours
    void start(MatrixView<double> Y, const NeighbourGraph& graph, RandomStream& random) const {
        switch (options_.start) {
            case StartKind::Random:
                draw_initial_embedding(Y.values, Y.size(), options_.start_spread, random);
                break;
            case StartKind::Pca:
                startAlongComponents(Y);
                break;
            case StartKind::Given:
                startAtPlaces(Y, graph);
                break;
        }
    }

  private:
    void startAlongComponents(MatrixView<double> Y) const {
        if (components_) {
            start_along_components(Y, *components_, options_.start_spread);
            return;
        }
        const std::size_t count = std::min({Y.columns, X_.rows, X_.columns});
        start_along_components(Y, principal_components(X_, count), options_.start_spread);
    }

    void startAtPlaces(MatrixView<double> Y, const NeighbourGraph& graph) const {
        if (needs_neighbours_ && graph.rows == 0) {
            start_at_places(Y, places_, placing_neighbours(view(), options_.metric));
        } else {
            start_at_places(Y, places_, graph);
        }
    }

    MatrixView<const double> X_;
    const FitOptions& options_;
    MatrixView<const double> places_;
    std::optional<PrincipalComponents> components_;
    bool needs_neighbours_;
};

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
    check_start(options, hooks, Y);
    OwnRandomStream own_stream;
    RandomStream& stream = random != nullptr ? *random : own_stream;
    stream.seed(static_cast<unsigned int>(options.seed));
    std::optional<GradientDescent> descent(std::in_place, Y.size(), options.gains);
    tell(hooks.on_note, FitNote::SimilaritiesBegin);
    FitReport report;
    const std::clock_t start = std::clock();
    Stopwatch watch;
    if (options.start == StartKind::Given) {
        report.start_remark = extent_remark(hooks.start);
    }
    report.scale = prepare_input(X, options.metric);
    std::optional<Rows> rows(std::in_place, X, options, hooks, report);
    const bool has_graph = hooks.wants_neighbours || rows->needNeighbours();
    std::unique_ptr<Objective> objective = method.make({rows->view(),
                                                        options,
                                                        hooks.on_note,
                                                        hooks.cached_neighbours,
                                                        has_graph ? &report.neighbours : nullptr,
                                                        stream});
    const std::clock_t similarities_end = std::clock();
    report.seconds.similarities = watch.lap();
    const Schedule schedule(options, X.rows);
    objective->exaggerate(schedule.exaggeration());
    rows->start(Y, report.neighbours, stream);
    rows.reset();
    if (!hooks.wants_neighbours) {
        report.neighbours = {};
    }
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
    if (hooks.wants_row_costs) {
        report.row_costs = optimisation.rowCosts();
    }
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
