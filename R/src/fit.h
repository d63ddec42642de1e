#pragma once

#include <atomic>
#include <functional>
#include <ovik/stats/fit.h>
#include <string>
#include <vector>

namespace ovik::r {

/// How a fit is made, beside its options.
struct FitManner {
    /// Number of threads; 0 for all cores.
    int threads = 0;
    /// Takes the lines that tell how far the fit is, called by the thread of the fit; may be empty.
    std::function<void(std::string)> tell = {};
    /// The start, row by row, rows x output dimensions; empty for one that the fit makes.
    std::vector<double> start = {};
};

struct Outcome {
    Fit fit;
    /// What the user should know of the threads; mostly empty.
    std::string threads_note;
};

/// Embeds the rows of a matrix; the coordinates are those that the command would give.
///
/// One fit at a time, which the caller sees to.
///
/// @param X               at least 3 rows, finite, not all equal; centred and scaled in place
/// @param is_interrupted  looked at after each iteration; if set, the fit is given up
/// @throws InputError     if the threads cannot be had
/// @throws std::bad_alloc if the fit cannot have its memory
/// @throws std::runtime_error if the embedding gets out of range, or is given up
Outcome run_fit(MatrixView<double> X,
                const FitOptions& options,
                const FitManner& manner,
                const std::atomic<bool>& is_interrupted);

}  // namespace ovik::r
