#include "stats/memory_estimate.h"

#include <algorithm>

#include "stats/chosen_affinities.h"
#include "stats/embedding_start.h"
#include "stats/method.h"
#include "stats/sample_start.h"

namespace ovik {

namespace {

/// What program, libraries, gene table and threads take.
constexpr double kProgramBytes = 14e6;

/// What an image of the points takes while a figure of the usual size is drawn, which figures of so
/// many points have.
constexpr double kImageBytes = 78e6;
constexpr double kFewestImagePoints = 20001.0;

/// What principal components take while they are found; 0 if none are wanted.
double components_memory(const RunSize& size) {
    const FitOptions& options = size.options;
    if (options.pca == 0 && options.start != StartKind::Pca) {
        return 0.0;
    }
    const auto N = static_cast<double>(size.rows);
    const auto D = static_cast<double>(size.columns);
    const double smaller = std::min(N, D);
    return 48.0 * smaller * smaller + (N < D ? 8.0 * N * D : 0.0);
}

/// The run as the method sees it.
RunSize with_components(RunSize size) {
    if (size.options.pca > 0) {
        size.columns = static_cast<std::size_t>(size.options.pca);
    }
    return size;
}

/// What the fit of a sample takes beside the fit that starts with it, and the neighbours by which
/// the others are placed; 0 for other starts.
///
/// @param size  as the method sees the run
double sample_memory(const RunSize& size) {
    if (size.options.start != StartKind::Sample) {
        return 0.0;
    }
    const std::size_t rows = std::min(sample_size(size.rows), size.rows);
    const RunSize sampled{.rows = rows,
                          .columns = size.columns,
                          .options = options_of_sample(size.options, rows),
                          .threads = size.threads};
    const Method& method = method_of(sampled.options);
    const MethodMemory memory = method.memory(sampled);
    const auto n = static_cast<double>(rows);
    const auto d = static_cast<double>(size.options.out_dims);
    // Those of the method come without distances.
    const double neighbour_bytes =
        method.has_neighbours ? 4.0 * std::max(affinity_neighbours(size.options, size.rows), 0)
                              : 12.0 * static_cast<double>(kPlacingNeighbours);
    return neighbour_bytes * static_cast<double>(size.rows) +
           8.0 * n * static_cast<double>(size.columns) + 32.0 * n * d +
           std::max(memory.similarities, memory.fitting + components_memory(sampled));
}

/// How many of several fits run side by side.
double fits_at_once(const RunSize& size, std::size_t fits) {
    const std::size_t allowed = size.seeds_at_once == 0 ? size.threads : size.seeds_at_once;
    const std::size_t most = std::min({allowed, size.threads, fits});
    return static_cast<double>(std::max<std::size_t>(most, 1));
}

}  // namespace

double MemoryEstimate::peak() const {
    return std::max({reading, similarities, sample, fitting, clusters, stability, results});
}

MemoryEstimate estimate_memory(const RunSize& size) {
    const auto N = static_cast<double>(size.rows);
    const auto d = static_cast<double>(size.options.out_dims);
    const double table_rows = N * d * std::max(d - 1.0, 0.0) / 2.0;
    const double input = 8.0 * N * static_cast<double>(size.columns);
    const MethodMemory method = method_of(size.options).memory(with_components(size));
    double lasting = kProgramBytes + input + 80.0 * N;
    MemoryEstimate estimate;
    estimate.reading = lasting + input;
    const auto page_bytes = static_cast<double>(size.page_bytes);
    lasting += page_bytes;
    if (size.is_shared) {
        lasting += input;
    }
    lasting += size.other_maps > 0 ? input : 0.0;
    double at_once = 1.0;
    if (size.seeds > 1) {
        // The first one does by itself.
        at_once = fits_at_once(size, static_cast<std::size_t>(size.seeds - 1));
        lasting += (1.0 + at_once) * input + 8.0 * N * d * static_cast<double>(size.seeds);
    }
    if (size.is_shared || size.seeds > 1) {
        lasting += method.shared;
    }
    const double scores = 8.0 * N * static_cast<double>(std::max(size.options.pca, 0));
    const double similarities = std::max(components_memory(size), scores + method.similarities);
    estimate.similarities = lasting + at_once * similarities;
    const double fitting = 32.0 * N * d + method.fitting;
    estimate.fitting = lasting + at_once * fitting;
    if (const double sample = sample_memory(with_components(size)); sample > 0.0) {
        estimate.sample = lasting + at_once * (scores + fitting + sample);
    }
    if (size.has_clusters) {
        const double entries = N * std::max(affinity_neighbours(size.options, size.rows), 0);
        const double symmetric = symmetric_share(with_components(size).columns) * entries;
        if (method_of(size.options).has_neighbours) {
            estimate.fitting += 12.0 * entries;
        }
        estimate.clusters =
            lasting + 160.0 * table_rows + 130.0 * N + 48.0 * entries + 12.0 * symmetric;
    }
    if (size.other_maps > 0) {
        estimate.stability = lasting + 160.0 * table_rows + 130.0 * N + method.shared +
                             8.0 * N * d * static_cast<double>(size.other_maps) +
                             fits_at_once(size, size.other_maps) *
                                 (input + std::max(similarities, scores + fitting) +
                                  sample_memory(with_components(size)));
    }
    const double image = table_rows < kFewestImagePoints ? 0.0 : kImageBytes;
    estimate.results =
        lasting + (size.has_plots ? 330.0 * table_rows + 300.0 * N + 6.0 * page_bytes + image
                                  : 160.0 * table_rows + 130.0 * N);
    return estimate;
}

}  // namespace ovik
