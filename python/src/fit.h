#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

namespace ovik::python {

/// Points as they come from Python, row-major, rows x columns.
struct Points {
    const double* values;
    std::size_t rows;
    std::size_t columns;
};

/// Of a fit, as the command has them.
struct FitOptions {
    int dims;
    double perplexity;
    double theta;
    int max_iter;
    int stop_lying_iter;
    int mom_switch_iter;
    /// 0: all cores.
    int threads;
    /// Whether the engine's console lines show.
    bool verbose;
};

struct Fit {
    /// Row-major, rows x dims.
    std::vector<double> embedding;
    /// Against the similarities without exaggeration.
    double cost = 0.0;
    /// The iteration done last.
    int last_iteration = 0;
    /// What the user should know of the threads; mostly empty.
    std::string threads_note;
};

/// Embeds the points, with the numbers that the command would come to.
///
/// One fit at a time: the random start is from the `rand` stream of the process.
///
/// @param points          at least 3 rows, finite; copied once
/// @param is_interrupted  looked at after each iteration; if set, the fit is given up
/// @throws InputError     if all rows are equal, or their values too large or too close
/// @throws std::bad_alloc if the fit cannot have its memory
/// @throws std::runtime_error if the embedding gets out of range, or is given up
Fit fit(const Points& points, const FitOptions& options, const std::atomic<bool>& is_interrupted);

}  // namespace ovik::python
