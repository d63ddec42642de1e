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

std::string recall_line(const NeighbourRecall& recall) {
    char line[96];
    std::snprintf(line,
                  sizeof line,
                  "Approximate neighbours: %.1f %% of the nearest, of %zu rows",
                  100.0 * recall.share,
                  recall.rows);
    return line;
}

/// Whether an iteration is one of those that are told of: few enough to be read.
bool is_told(const IterationReport& reached) {
    constexpr int kBetweenLines = 50;
    return reached.iteration % kBetweenLines == 0 || reached.isLast();
}

void require_going_on(const std::atomic<bool>& is_interrupted) {
    if (is_interrupted) {
        throw std::runtime_error("interrupted");
    }
}

void require_finite(const IterationReport& reached) {
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
    const auto dims = static_cast<std::size_t>(options.out_dims);
    hooks.start = {manner.start.data(), manner.start.size() / dims, dims};
    hooks.on_iteration = [&](const FitState& state) {
        require_going_on(is_interrupted);
        require_finite(state.reached);
        if (manner.tell && is_told(state.reached)) {
            manner.tell(progress_line(state.reached));
        }
        return true;
    };
    hooks.on_stage = [&](Stage /*stage*/, std::uint64_t /*done*/, std::uint64_t /*total*/) {
        require_going_on(is_interrupted);
    };
    if (manner.tell) {
        hooks.on_similarities = manner.tell;
        hooks.on_recall = [&](const NeighbourRecall& recall) { manner.tell(recall_line(recall)); };
    }
    outcome.fit = fit(X, options, hooks);
    if (outcome.threads_note.empty()) {
        outcome.threads_note = denied_threads_note();
    }
    return outcome;
}

}  // namespace ovik::r
