#include "python/src/fit.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <omp.h>
#include <optional>
#include <stdexcept>
#include <utility>

#include "input/inspected_matrix.h"
#include "input/matrix_checks.h"
#include "stats/memory_estimate.h"
#include "stats/tsne.h"
#include "util/available_memory.h"
#include "util/console.h"
#include "util/threads.h"

#include "tools/memory_check.h"

namespace ovik::python {

namespace {

class MemoryShortage : public std::bad_alloc {
  public:
    explicit MemoryShortage(std::string message)
        : message_(std::make_shared<const std::string>(std::move(message))) {}

    [[nodiscard]] const char* what() const noexcept override { return message_->c_str(); }

  private:
    /// Shared, so that copies throw nothing.
    std::shared_ptr<const std::string> message_;
};

/// Where the engine's work arrays cannot be had it ends the process: that is not to happen to an
/// interpreter. Memory that this process has already counts for nothing; it is the user's.
///
/// @throws MemoryShortage
void check_memory(const Points& points, const FitOptions& options) {
    const RunSize size{points.rows,
                       points.columns,
                       static_cast<std::size_t>(options.dims),
                       options.perplexity,
                       options.theta,
                       false,
                       static_cast<std::size_t>(omp_get_max_threads())};
    const MemoryEstimate estimate = estimate_memory(size);
    const double needed = std::max(estimate.similarities, estimate.fitting);
    const AvailableMemory available = available_memory();
    if (needed > available.bytes) {
        throw MemoryShortage("the fit takes about " + tool::memory_text(needed) +
                             " of memory, and " +
                             tool::memory_text(std::max(available.bytes, 0.0)) + " are left " +
                             available.limit + "\n" +
                             (options.theta == 0.0 ? "Take a theta above 0 or fewer rows."
                                                   : "Take fewer rows, fewer columns or a lower "
                                                     "perplexity."));
    }
}

/// The engine's own copy, which it centres and scales.
///
/// @throws InputError if the values cannot be embedded
std::unique_ptr<double[]> checked_copy(const Points& points) {
    const std::size_t count = points.rows * points.columns;
    InspectedMatrix matrix;
    matrix.report.rows = points.rows;
    matrix.report.columns = points.columns;
    matrix.values.reset(new double[count]);
    std::copy_n(points.values, count, matrix.values.get());
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

Fit fit(const Points& points, const FitOptions& options, const std::atomic<bool>& is_interrupted) {
    Fit result;
    result.threads_note = set_thread_count(options.threads);
    check_memory(points, options);
    std::unique_ptr<double[]> X = checked_copy(points);
    TSNE<double> tsne("", "", "", "");
    tsne.N = static_cast<int>(points.rows);
    tsne.D = static_cast<int>(points.columns);
    tsne.X = X.release();
    const auto finish = [](TSNE<double>* run) { run->finish(); };
    const std::unique_ptr<TSNE<double>, decltype(finish)> finished_whatever_happens(&tsne, finish);
    tsne.max_iter = options.max_iter;
    tsne.theta = options.theta;
    tsne.on_iteration = [&](const IterationReport& reached) {
        return goes_on(reached, is_interrupted);
    };
    std::optional<ConsoleSilence> silence;
    if (!options.verbose) {
        silence.emplace();
    }
    result.last_iteration =
        tsne.embed(
                options.dims, options.perplexity, options.stop_lying_iter, options.mom_switch_iter)
            .iteration;
    std::fflush(stdout);
    result.cost = tsne.finalCost();
    result.embedding.assign(tsne.Y, tsne.Y + points.rows * static_cast<std::size_t>(options.dims));
    return result;
}

}  // namespace ovik::python
