#include "python/src/fit.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "input/inspected_matrix.h"
#include "input/matrix_checks.h"
#include "stats/fit_console.h"
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

bool goes_on(const IterationReport& reached, const std::atomic<bool>& is_interrupted) {
    if (is_interrupted) {
        throw std::runtime_error("interrupted");
    }
    if (!reached.finite) {
        throw std::runtime_error("the embedding got out of range at iteration " +
                                 std::to_string(reached.iteration) +
                                 "\nBring the columns of X to a common scale, or choose another "
                                 "perplexity.");
    }
    return true;
}

}  // namespace

Outcome run_fit(MatrixView<const double> points,
                const FitOptions& options,
                const FitManner& manner,
                const std::atomic<bool>& is_interrupted) {
    Outcome outcome;
    outcome.threads_note = set_thread_count(manner.threads);
    const std::unique_ptr<double[]> X = checked_copy(points);
    FitHooks hooks;
    hooks.on_iteration = [&](const FitState& state) {
        if (manner.verbose) {
            print_progress<double>(state.reached);
        }
        return goes_on(state.reached, is_interrupted);
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
    return outcome;
}

}  // namespace ovik::python
