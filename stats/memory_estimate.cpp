#include "stats/memory_estimate.h"

#include <algorithm>

#include "stats/method.h"

namespace ovik {

namespace {

/// What program, libraries, gene table and threads take.
constexpr double kProgramBytes = 14e6;

}  // namespace

double MemoryEstimate::peak() const {
    return std::max({reading, similarities, fitting, results});
}

MemoryEstimate estimate_memory(const RunSize& size) {
    const auto N = static_cast<double>(size.rows);
    const auto d = static_cast<double>(size.options.out_dims);
    const double table_rows = N * d * std::max(d - 1.0, 0.0) / 2.0;
    const double input = 8.0 * N * static_cast<double>(size.columns);
    const MethodMemory method = method_of(size.options).memory(size);
    double lasting = kProgramBytes + input + 80.0 * N;
    MemoryEstimate estimate;
    estimate.reading = lasting + input;
    if (size.is_shared) {
        lasting += input + method.shared;
    }
    estimate.similarities = lasting + method.similarities;
    estimate.fitting = lasting + 32.0 * N * d + method.fitting;
    estimate.results = lasting + (size.has_plots ? 330.0 * table_rows + 300.0 * N
                                                 : 160.0 * table_rows + 130.0 * N);
    return estimate;
}

}  // namespace ovik
