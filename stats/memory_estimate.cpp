#include "stats/memory_estimate.h"

#include <algorithm>

#include "neighbours/neighbour_index.h"

namespace ovik {

namespace {

/// Program, libraries, gene table, threads.
constexpr double kProgramBytes = 14e6;

/// Symmetric entries for each conditional one.
double symmetric_share(double columns) {
    return std::min(1.0 + 0.06 * columns, 1.6);
}

}  // namespace

double MemoryEstimate::peak() const {
    return std::max({reading, similarities, fitting, results});
}

MemoryEstimate estimate_memory(const RunSize& size) {
    const auto N = static_cast<double>(size.rows);
    const auto D = static_cast<double>(size.columns);
    const auto d = static_cast<double>(size.out_dims);
    const double K = std::clamp(3.0 * size.perplexity, 0.0, std::max(N - 1.0, 0.0));
    const double entries = N * K;
    const double symmetric = symmetric_share(D) * entries;
    const double table_rows = N * d * std::max(d - 1.0, 0.0) / 2.0;
    const double input = 8.0 * N * D;
    double lasting = kProgramBytes + input + 80.0 * N;
    MemoryEstimate estimate;
    estimate.reading = lasting + input;
    const auto blocks = static_cast<double>(NeighbourIndex::blockCount(size.rows));
    const double of_queries = blocks * 512.0 * static_cast<double>(size.threads);
    const double index = 164.0 * N + blocks * (128.0 * D + 256.0);
    if (size.is_shared) {
        lasting += input + (size.theta == 0.0 ? 0.0 : index + 16.0 * entries + 16.0 * N);
    }
    estimate.fitting = lasting + 32.0 * N * d;
    if (size.theta == 0.0) {
        estimate.similarities = lasting + input + 16.0 * N * N;
        estimate.fitting += 8.0 * N * N;
    } else {
        const double searching = of_queries + (size.is_shared ? 0.0 : index);
        const double symmetrizing = 8.0 * entries + 8.0 * N + 12.0 * symmetric;
        estimate.similarities = lasting + 12.0 * entries + std::max(searching, symmetrizing);
        estimate.fitting += 12.0 * symmetric + 157.0 * N + 44.0 * N * d;
    }
    estimate.results = lasting + (size.has_plots ? 330.0 * table_rows + 300.0 * N
                                                 : 160.0 * table_rows + 130.0 * N);
    return estimate;
}

}  // namespace ovik
