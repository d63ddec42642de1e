#include "fit.h"

#include <cstdio>
#include <ovik/util/threads.h>
#include <stdexcept>

namespace ovik::r {

namespace {

std::string progress_line(const IterationReport& reached) {
    char line[96];
    std::snprintf(line,
                  sizeof line,
                  "Iteration %d of %d: cost %.4f",
                  reached.iteration,
                  reached.max_iter,
                  reached.cost);
    return line;
}

/// Whether an iteration is one of those that are told of: few enough to be read.
bool is_told(const IterationReport& reached) {
    constexpr int kBetweenLines = 50;
    return reached.iteration % kBetweenLines == 0 || reached.iteration == reached.max_iter;
}

void require_going_on(const IterationReport& reached, const std::atomic<bool>& is_interrupted) {
    if (is_interrupted) {
        throw std::runtime_error("interrupted");
    }
    if (!reached.finite) {
        throw std::runtime_error("The embedding got out of range at iteration " +
                                 std::to_string(reached.iteration) +
                                 "\nBring the columns of x to a common scale, or choose another "
                                 "perplexity.");
    }
}

}  // namespace

Outcome run_fit(MatrixView<double> X,
                const FitOptions& options,
                const FitManner& manner,
                const std::atomic<bool>& is_interrupted) {
    Outcome outcome;
    outcome.threads_note = set_thread_count(manner.threads);
    FitHooks hooks;
    hooks.on_iteration = [&](const FitState& state) {
        require_going_on(state.reached, is_interrupted);
        if (manner.tell && is_told(state.reached)) {
            manner.tell(progress_line(state.reached));
        }
        return true;
    };
    if (manner.tell) {
        hooks.on_similarities = manner.tell;
    }
    // A start in the place of the random one: the state before the first iteration.
    const std::vector<double> velocity(manner.start.size(), 0.0);
    const std::vector<double> gains(manner.start.size(), 1.0);
    FitState start;
    start.embedding = manner.start;
    start.velocity = velocity;
    start.gains = gains;
    hooks.resumed_state = manner.start.empty() ? nullptr : &start;
    outcome.fit = fit(X, options, hooks);
    if (outcome.threads_note.empty()) {
        outcome.threads_note = denied_threads_note();
    }
    return outcome;
}

}  // namespace ovik::r
