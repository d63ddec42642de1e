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
#include "stats/fit_console.h"
#include "stats/run_caption.h"
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

/// A start in the place of the random one: the state before the first iteration.
class GivenStart {
  public:
    GivenStart(const double* start, std::size_t count)
        : velocity_(start == nullptr ? 0 : count, 0.0),
          gains_(velocity_.size(), 1.0) {
        state_.embedding = {start, velocity_.size()};
        state_.velocity = velocity_;
        state_.gains = gains_;
    }

    /// Null without one.
    [[nodiscard]] const FitState* state() const { return velocity_.empty() ? nullptr : &state_; }

  private:
    std::vector<double> velocity_;
    std::vector<double> gains_;
    FitState state_;
};

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

}  // namespace

Outcome run_fit(MatrixView<const double> points,
                const FitOptions& options,
                const FitManner& manner,
                const std::atomic<bool>& is_interrupted) {
    Outcome outcome;
    outcome.threads_note = set_thread_count(manner.threads);
    std::unique_ptr<double[]> X = checked_copy(points);
    const GivenStart start(manner.start, points.rows * static_cast<std::size_t>(options.out_dims));
    FitHooks hooks;
    hooks.resumed_state = start.state();
    hooks.on_iteration = [&](const FitState& state) {
        if (manner.verbose) {
            print_progress<double>(state.reached);
        }
        return goes_on(state, manner, is_interrupted, outcome);
    };
    if (manner.verbose) {
        print_launch(options, static_cast<int>(points.rows));
        hooks.on_note = console_notes(options.perplexity);
        hooks.on_similarities = [](const std::string& message) { print_info(message); };
    }
    outcome.fit = fit({X.get(), points.rows, points.columns}, options, hooks);
    if (manner.verbose) {
        print_end_of_iterations(outcome.fit.report.reached);
        print_fitting_time(outcome.fit.report.fitting_clock);
        std::fflush(stdout);
    }
    outcome.caption = caption_parameters(options, points.rows, points.columns, outcome.fit.report);
    if (manner.quality_neighbours > 0) {
        // Of the matrix as it was centred and scaled, as the command has it.
        outcome.quality = neighbourhood_quality(X.get(),
                                                points.rows,
                                                points.columns,
                                                outcome.fit.embedding.data(),
                                                static_cast<std::size_t>(options.out_dims),
                                                {manner.quality_neighbours})
                              .front();
    }
    if (outcome.threads_note.empty()) {
        outcome.threads_note = denied_threads_note();
    }
    outcome.input = std::move(X);
    return outcome;
}

}  // namespace ovik::python
