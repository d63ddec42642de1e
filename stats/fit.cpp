#include "stats/fit.h"

#include <algorithm>
#include <cstdint>
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
#include "stats/numerics.h"
#include "stats/optimisation.h"
#include "stats/principal_components.h"
#include "stats/row_metric.h"
#include "stats/sample_start.h"
#include "stats/shared_fit.h"
#include "util/input_error.h"
#include "util/random_stream.h"
#include "util/ranks.h"
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

/// @throws std::invalid_argument if several ranks are to share what they cannot
void check_ranks(const Ranks& ranks, const Method& method, const FitHooks& hooks) {
    if (ranks.areSeveral() && (!method.is_shareable || hooks.cached_neighbours != nullptr)) {
        throw std::invalid_argument(
            "several ranks share fits by the mesh alone, with neighbours of their own search");
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
    tell(hooks.on_stage, Stage::Components, 0, 0);
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
          hooks_(hooks),
          places_(hooks.start),
          components_(reduced_columns(X, options, hooks, report)),
          needs_neighbours_(isStartedFromSample() || (options.start == StartKind::Given &&
                                                      has_rows_without_place(places_))) {}

    /// The rows as the method sees them.
    [[nodiscard]] MatrixView<const double> view() const {
        return components_ ? components_->scoresView() : X_;
    }

    /// Whether a sample is embedded first: what is resumed takes the place of that, which takes its
    /// time.
    [[nodiscard]] bool isStartedFromSample() const {
        return options_.start == StartKind::Sample && hooks_.resumed_state == nullptr;
    }

    /// Whether the start depends on the neighbours of the rows.
    [[nodiscard]] bool needNeighbours() const { return needs_neighbours_; }

    /// Writes the start of the embedding.
    ///
    /// @param graph  of the method, empty if that searches for no neighbours
    /// @return what came of the sample, if the start is one by a sample
    std::optional<SampleReport> start(MatrixView<double> Y,
                                      const NeighbourGraph& graph,
                                      RandomStream& random) const {
        switch (options_.start) {
            case StartKind::Random:
                draw_initial_embedding(Y.values,
                                       Y.size(),
                                       options_.start_spread,
                                       random,
                                       elementary_of(options_.numerics).log);
                break;
            case StartKind::Pca:
                startAlongComponents(Y);
                break;
            case StartKind::Sample:
                if (isStartedFromSample()) {
                    return startFromSample(Y, graph);
                }
                break;
            case StartKind::Given:
                startAtPlaces(Y, graph);
                break;
        }
        return std::nullopt;
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

    [[nodiscard]] SampleReport startFromSample(MatrixView<double> Y,
                                               const NeighbourGraph& graph) const {
        tell(hooks_.on_note, FitNote::SampleBegins);
        const SampleHooks hooks{hooks_.on_stage, hooks_.on_sample_iteration, hooks_.ranks};
        return graph.rows == 0
                   ? start_from_sample(
                         Y, view(), options_, placingNeighbours(MetricKind::Euclidean), hooks)
                   : start_from_sample(Y, view(), options_, graph, hooks);
    }

    void startAtPlaces(MatrixView<double> Y, const NeighbourGraph& graph) const {
        if (needs_neighbours_ && graph.rows == 0) {
            start_at_places(Y, places_, placingNeighbours(options_.metric));
        } else {
            start_at_places(Y, places_, graph);
        }
    }

    [[nodiscard]] NeighbourGraph placingNeighbours(MetricKind metric) const {
        return placing_neighbours(view(), metric, ties_of(options_.numerics));
    }

    MatrixView<const double> X_;
    const FitOptions& options_;
    const FitHooks& hooks_;
    MatrixView<const double> places_;
    std::optional<PrincipalComponents> components_;
    bool needs_neighbours_;
};

/// The objective of a method, and what there is to report of the search for neighbours.
std::unique_ptr<Objective> make_objective(const Method& method,
                                          const Rows& rows,
                                          const FitOptions& options,
                                          const FitHooks& hooks,
                                          RandomStream& stream,
                                          SharedFit& shared,
                                          FitReport& report) {
    const FitNotes notes = [&](FitNote note) {
        report.search_became_exact |= note == FitNote::SearchIsExact;
        tell(hooks.on_note, note);
    };
    const bool has_graph = hooks.wants_neighbours || rows.needNeighbours();
    shared.begin(rows.view().rows,
                 rows.view().columns,
                 options,
                 {has_graph, hooks.wants_neighbours, hooks.wants_row_costs});
    const MethodInput input{rows.view(),
                            options,
                            notes,
                            hooks.cached_neighbours,
                            has_graph ? &report.neighbours : nullptr,
                            stream,
                            hooks.on_stage,
                            &report.recall,
                            hooks.wants_neighbours,
                            hooks.ranks};
    std::unique_ptr<Objective> objective = shared.together([&] { return method.make(input); });
    if (report.recall && hooks.on_recall) {
        hooks.on_recall(*report.recall);
    }
    return objective;
}

/// Iterates until the last iteration, or until a hook ends the fit.
void iterate(Optimisation& optimisation,
             int max_iter,
             const FitHooks& hooks,
             SharedFit& shared,
             FitReport& report) {
    bool goes_on = true;
    const auto count = static_cast<std::uint64_t>(std::max(max_iter, -1) + 1);
    while (goes_on && !optimisation.isDone()) {
        optimisation.iterate();
        const IterationReport& reached = optimisation.state().reached;
        report.costs.push_back(reached.cost);
        goes_on = shared.alone([&] {
            tell(hooks.on_stage,
                 Stage::Iterations,
                 reached.isLast() ? count : static_cast<std::uint64_t>(reached.iteration) + 1,
                 count);
            return !hooks.on_iteration || hooks.on_iteration(optimisation.state());
        });
        shared.tell(goes_on);
    }
}

/// Iterates from a start, and tells of the map that is reached.
void optimise(Optimisation& optimisation,
              int max_iter,
              const FitHooks& hooks,
              SharedFit& shared,
              FitReport& report) {
    if (hooks.resumed_state != nullptr) {
        optimisation.resume(*hooks.resumed_state);
    }
    iterate(optimisation, max_iter, hooks, shared, report);
    report.reached = optimisation.state().reached;
    report.final_cost = optimisation.finalCost();
    if (hooks.wants_row_costs) {
        report.row_costs = optimisation.rowCosts();
        report.row_misfits = optimisation.rowMisfits();
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
    Ranks& ranks = hooks.ranks != nullptr ? *hooks.ranks : one_rank();
    check_ranks(ranks, method, hooks);
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
    SharedFit shared(ranks);
    std::unique_ptr<Objective> objective =
        make_objective(method, *rows, options, hooks, stream, shared, report);
    const std::clock_t similarities_end = std::clock();
    report.seconds.similarities = watch.lap();
    const Schedule schedule(options, X.rows);
    objective->exaggerate(schedule.exaggeration());
    shared.alone([&] {
        if (hooks.on_similarities) {
            hooks.on_similarities(objective->report(similarities_end - start));
        }
        report.sample = rows->start(Y, report.neighbours, stream);
        if (report.sample) {
            report.seconds.sample = watch.lap();
            if (hooks.on_sample) {
                hooks.on_sample(*report.sample);
            }
        }
    });
    rows.reset();
    if (!hooks.wants_neighbours) {
        report.neighbours = {};
    }
    const std::clock_t fitting_start = std::clock();
    shared.start(Y, hooks.resumed_state);
    Optimisation optimisation(*objective, *descent, Y, schedule);
    shared.together([&] { optimise(optimisation, options.max_iter, hooks, shared, report); });
    shared.end();
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
