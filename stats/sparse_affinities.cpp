#include "stats/sparse_affinities.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <vector>

#include "neighbours/neighbour_index.h"
#include "stats/bandwidth_search.h"
#include "util/console.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kBandwidthAttempts = 200;
constexpr std::size_t kQueriesPerTask = 32;

void check_entry_count(std::size_t entries) {
    if (entries > std::numeric_limits<unsigned int>::max()) {
        throw std::length_error("the similarity matrix has more than 2^32 - 1 entries (" +
                                std::to_string(entries) + "): lower the perplexity");
    }
}

/// What one worker needs to calibrate row after row.
struct RowScratch {
    NeighbourIndex::Query query;
    std::vector<double> squared_distances;
};

/// Fills the row of point n: columns nearest first, and their similarities.
void fill_row(const NeighbourIndex& index,
              const double* point,
              std::size_t n,
              double perplexity,
              std::size_t K,
              RowScratch& scratch,
              SparseMatrix& matrix) {
    unsigned int* const columns = matrix.col_P.get() + n * K;
    double* const similarities = matrix.val_P.get() + n * K;
    index.search(point, K + 1, scratch.query);
    const auto& nearest = scratch.query.neighbours;
    const std::size_t count = nearest.empty() ? 0 : nearest.size() - 1;
    for (std::size_t m = 0; m < count; ++m) {
        const double distance = nearest[m + 1].distance;
        scratch.squared_distances[m] = distance * distance;
        columns[m] = index.rowAt(nearest[m + 1].position);
    }
    const auto fill = [&](double beta) {
        for (std::size_t m = 0; m < count; ++m) {
            const double distance = nearest[m + 1].distance;
            similarities[m] = std::exp(((-beta) * distance) * distance);
        }
    };
    calibrate_similarities(scratch.squared_distances.data(),
                           similarities,
                           count,
                           perplexity,
                           kBandwidthAttempts,
                           fill);
    std::fill(columns + count, columns + K, static_cast<unsigned int>(n));
    std::fill(similarities + count, similarities + K, 0.0);
}

constexpr std::size_t kNotStored = static_cast<std::size_t>(-1);

/// The entry of row `row` whose column is `column`, the last one if there are several.
std::size_t find_entry(const SparseMatrixView& P, std::size_t row, std::size_t column) {
    for (std::size_t i = P.row_P[row + 1]; i-- > P.row_P[row];) {
        if (P.col_P[i] == column) {
            return i;
        }
    }
    return kNotStored;
}

/// An empty symmetric matrix with room for the entries of both directions in each row.
SparseMatrix allocate_symmetrized(const SparseMatrixView& P, std::size_t N) {
    const auto row_counts = calloc_array<unsigned int>(N);
    exit_unless_allocated(row_counts);
    std::size_t entries = 0;
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t i = P.row_P[n]; i < P.row_P[n + 1]; ++i) {
            const std::size_t j = P.col_P[i];
            const bool both = find_entry(P, j, n) != kNotStored;
            row_counts[n] += 1;
            row_counts[j] += both ? 0 : 1;
            entries += both ? 1 : 2;
        }
    }
    check_entry_count(entries);
    SparseMatrix result{malloc_array<unsigned int>(N + 1),
                        malloc_array<unsigned int>(entries),
                        malloc_array<double>(entries)};
    exit_unless_allocated(result.row_P, result.col_P, result.val_P);
    result.row_P[0] = 0;
    for (std::size_t n = 0; n < N; ++n) {
        result.row_P[n + 1] = result.row_P[n] + row_counts[n];
    }
    return result;
}  // NOLINT(clang-analyzer-unix.Malloc): the result owns its blocks

}  // namespace

SparseMatrix neighbour_affinities(
    const double* points, std::size_t N, std::size_t dims, double perplexity, int K) {
    if (perplexity > static_cast<double>(K)) {
        std::fputs("Perplexity should be lower than K!\n", stderr);
    }
    const auto row_length = static_cast<std::size_t>(std::max(K, 0));
    check_entry_count(N * row_length);
    SparseMatrix matrix{malloc_array<unsigned int>(N + 1),
                        calloc_array<unsigned int>(N * row_length),
                        calloc_array<double>(N * row_length)};
    exit_unless_allocated(matrix.row_P, matrix.col_P, matrix.val_P);
    for (std::size_t n = 0; n <= N; ++n) {
        matrix.row_P[n] = static_cast<unsigned int>(n * row_length);
    }
    const NeighbourIndex index(points, N, dims);
    print_info("Building tree ...");
    // Queries in tree order: near points look at the same blocks.
    const std::size_t tasks = (N + kQueriesPerTask - 1) / kQueriesPerTask;
    const int workers = worker_count(tasks);
    std::vector<RowScratch> scratch(static_cast<std::size_t>(workers));
    for (RowScratch& worker : scratch) {
        worker.squared_distances.resize(row_length);
        worker.query.neighbours.reserve(std::min(row_length, N) + 1);
    }
    parallel_deal(tasks, workers, [&](std::size_t task, std::size_t worker) {
        const std::size_t begin = task * kQueriesPerTask;
        for (std::size_t i = begin; i < std::min(begin + kQueriesPerTask, N); ++i) {
            const std::size_t n = index.rowAt(i);
            fill_row(index, points + n * dims, n, perplexity, row_length, scratch[worker], matrix);
        }
    });
    return matrix;
}  // NOLINT(clang-analyzer-unix.Malloc): the result owns its blocks

SparseMatrix symmetrized(const SparseMatrixView& P, std::size_t N) {
    SparseMatrix result = allocate_symmetrized(P, N);
    const auto offset = calloc_array<unsigned int>(N);
    exit_unless_allocated(offset);
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t i = P.row_P[n]; i < P.row_P[n + 1]; ++i) {
            const std::size_t j = P.col_P[i];
            const std::size_t mirror = find_entry(P, j, n);
            if (mirror != kNotStored && n > j) {
                continue;  // written with row j
            }
            const double sum = mirror == kNotStored ? P.val_P[i] : P.val_P[i] + P.val_P[mirror];
            const std::size_t own_slot = result.row_P[n] + offset[n];
            const std::size_t mirror_slot = result.row_P[j] + offset[j];
            result.col_P[own_slot] = static_cast<unsigned int>(j);
            result.col_P[mirror_slot] = static_cast<unsigned int>(n);
            result.val_P[own_slot] = sum * 0.5;
            result.val_P[mirror_slot] = sum * 0.5;
            offset[n] += 1;
            offset[j] += j != n ? 1 : 0;
        }
    }
    return result;
}

}  // namespace ovik
