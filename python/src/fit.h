#pragma once

#include <atomic>
#include <string>

#include "stats/fit.h"

namespace ovik::python {

/// How a fit is made, beside its options.
struct FitManner {
    /// Number of threads; 0 for all cores.
    int threads = 0;
    /// Whether the engine's console lines show.
    bool verbose = false;
};

struct Outcome {
    Fit fit;
    /// What the user should know of the threads; mostly empty.
    std::string threads_note;
};

/// Embeds the points; the coordinates are those that the command would give.
///
/// One fit at a time: the random start is from the `rand` stream of the process.
///
/// @param points          at least 3 rows, finite; copied once
/// @param is_interrupted  looked at after each iteration; if set, the fit is given up
/// @throws InputError     if all rows are equal, or their values too large or too close
/// @throws std::bad_alloc if the fit cannot have its memory
/// @throws std::runtime_error if the embedding gets out of range, or is given up
Outcome run_fit(MatrixView<const double> points,
                const FitOptions& options,
                const FitManner& manner,
                const std::atomic<bool>& is_interrupted);

}  // namespace ovik::python
