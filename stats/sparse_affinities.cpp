#include "stats/sparse_affinities.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "neighbours/neighbour_graph.h"
#include "neighbours/neighbour_index.h"
#include "stats/bandwidth_search.h"
#include "stats/cached_neighbours.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr int kBandwidthAttempts = 200;
constexpr std::size_t kTargetsPerTask = 8 * kTargets;

void check_entry_count(std::size_t entries) {
    if (entries > std::numeric_limits<unsigned int>::max()) {
        throw std::length_error("the similarity matrix has more than 2^32 - 1 entries (" +
                                std::to_string(entries) + "): lower the perplexity");
    }
}

/// Every row is filled up with itself.
NeighbourGraph graph_without_neighbours(std::size_t N, std::size_t neighbour_count) {
    NeighbourGraph graph{N, neighbour_count, {}, {}};
    graph.distances.assign(N * neighbour_count, std::numeric_limits<double>::infinity());
    graph.neighbours.reserve(N * neighbour_count);
    for (std::size_t n = 0; n < N; ++n) {
        graph.neighbours.insert(
            graph.neighbours.end(), neighbour_count, static_cast<std::uint32_t>(n));
    }
    return graph;
}

/// What one worker needs to calibrate row after row.
struct RowScratch {
    NeighbourIndex::Queries queries;
    std::vector<double> squared_distances;
};

/// Fills rows of the matrix of conditional affinities.
class RowFiller {
  public:
    /// All arguments but the numbers have to outlive the object.
    ///
    /// @param hooks   `cached`, if there is one, holds the index; `graph` has room for all rows
    /// @param points  those of the index, row-major
    /// @param K       entries of a row
    RowFiller(const NeighbourIndex& index,
              const NeighbourHooks& hooks,
              const double* points,
              std::size_t dims,
              double perplexity,
              std::size_t K,
              SparseMatrix& matrix)
        : index_(index),
          hooks_(hooks),
          points_(points),
          dims_(dims),
          perplexity_(perplexity),
          K_(K),
          matrix_(matrix) {}

    /// Fills the rows of at most kTargets positions of the tree order.
    void fill(IndexRange positions, RowScratch& scratch) const {
        const double* targets[kTargets];
        for (std::size_t i = positions.begin; i < positions.end; ++i) {
            targets[i - positions.begin] = points_ + index_.rowAt(i) * dims_;
        }
        if (hooks_.cached != nullptr) {
            hooks_.cached->search(positions, targets, K_ + 1, scratch.queries);
        } else {
            index_.search(targets, positions.size(), K_ + 1, scratch.queries);
        }
        for (std::size_t i = positions.begin; i < positions.end; ++i) {
            const auto& nearest = scratch.queries.neighbours[i - positions.begin];
            fillRow(index_.rowAt(i), nearest, scratch.squared_distances.data());
            if (hooks_.graph != nullptr) {
                noteNeighbours(index_.rowAt(i), nearest);
            }
        }
    }

  private:
    /// Fills the row of point n: columns nearest first, and their affinities.
    ///
    /// @param nearest            the point itself and its neighbours
    /// @param squared_distances  scratch for K values
    void fillRow(std::size_t n,
                 const std::vector<NeighbourIndex::Neighbour>& nearest,
                 double* squared_distances) const {
        unsigned int* const columns = matrix_.col_P.get() + n * K_;
        double* const similarities = matrix_.val_P.get() + n * K_;
        const std::size_t count = nearest.empty() ? 0 : nearest.size() - 1;
        for (std::size_t m = 0; m < count; ++m) {
            const double distance = nearest[m + 1].distance;
            squared_distances[m] = distance * distance;
            columns[m] = index_.rowAt(nearest[m + 1].position);
        }
        const auto fill = [&](double beta) {
            for (std::size_t m = 0; m < count; ++m) {
                const double distance = nearest[m + 1].distance;
                similarities[m] = std::exp(((-beta) * distance) * distance);
            }
        };
        calibrate_similarities(
            squared_distances, similarities, count, perplexity_, kBandwidthAttempts, fill);
        std::fill(columns + count, columns + K_, static_cast<unsigned int>(n));
        std::fill(similarities + count, similarities + K_, 0.0);
    }

    /// Takes the neighbours of point n over into the graph, which is filled up beforehand.
    void noteNeighbours(std::size_t n,
                        const std::vector<NeighbourIndex::Neighbour>& nearest) const {
        for (std::size_t m = 0; m + 1 < nearest.size(); ++m) {
            hooks_.graph->neighbours[n * K_ + m] = index_.rowAt(nearest[m + 1].position);
            hooks_.graph->distances[n * K_ + m] = nearest[m + 1].distance;
        }
    }

    const NeighbourIndex& index_;
    const NeighbourHooks& hooks_;
    const double* points_;
    std::size_t dims_;
    double perplexity_;
    std::size_t K_;
    SparseMatrix& matrix_;
};

constexpr unsigned int kNotStored = static_cast<unsigned int>(-1);

/// Fewest rows for which another thread pays, and most threads: each has counters for all columns.
constexpr std::size_t kRowGrain = 512;
constexpr int kMostCounters = 16;

/// An entry seen from its column: the row that holds it, and its place there.
struct Arrival {
    unsigned int row;
    unsigned int entry;
};

/// Runs `visit(share, arrival)` for the entries of several shares of the rows: in order within a
/// share, the shares side by side.
template <typename Visit>
void for_each_entry(const SparseMatrixView& P,
                    std::size_t N,
                    std::size_t share_count,
                    const Visit& visit) {
    const auto visit_share = [&](std::size_t share) {
        const IndexRange rows = static_share(N, share_count, share);
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            for (unsigned int i = P.row_P[n]; i < P.row_P[n + 1]; ++i) {
                visit(share, Arrival{static_cast<unsigned int>(n), i});
            }
        }
    };
    parallel_for_each(share_count, 1, visit_share);
}

/// The entries of a matrix column by column, those of a column by row and then by place.
class Transposed {
  public:
    Transposed(const SparseMatrixView& P, std::size_t N)
        : starts_(calloc_array<std::size_t>(N + 1)),
          arrivals_(malloc_array<Arrival>(P.row_P[N])) {
        const auto team =
            static_cast<std::size_t>(std::min(worker_count(N, kRowGrain), kMostCounters));
        const auto next = calloc_array<unsigned int>(team * N);
        require_allocated(starts_, arrivals_, next);
        // Each worker's rows come before the next one's in every column.
        for_each_entry(P, N, team, [&](std::size_t worker, Arrival arrival) {
            ++next[worker * N + P.col_P[arrival.entry]];
        });
        unsigned int start = 0;
        for (std::size_t column = 0; column < N; ++column) {
            starts_[column] = start;
            for (std::size_t worker = 0; worker < team; ++worker) {
                start += std::exchange(next[worker * N + column], start);
            }
        }
        starts_[N] = start;
        for_each_entry(P, N, team, [&](std::size_t worker, Arrival arrival) {
            arrivals_[next[worker * N + P.col_P[arrival.entry]]++] = arrival;
        });
    }

    [[nodiscard]] const Arrival* begin(std::size_t column) const {
        return arrivals_.get() + starts_[column];
    }

    [[nodiscard]] const Arrival* end(std::size_t column) const { return begin(column + 1); }

    /// The arrival from a row in a column, the last one if there are several; null if there is
    /// none.
    [[nodiscard]] const Arrival* find(std::size_t row, std::size_t column) const {
        const Arrival* const behind = std::upper_bound(
            begin(column), end(column), row, [](std::size_t key, const Arrival& arrival) {
                return key < arrival.row;
            });
        return behind != begin(column) && behind[-1].row == row ? behind - 1 : nullptr;
    }

  private:
    MallocArray<std::size_t> starts_;
    MallocArray<Arrival> arrivals_;
};

/// Calls `emit(column, value)` for every entry of row n of the symmetric form, in the order in
/// which rows 0, 1, ... bring them up: what earlier rows store about n, then its own entries, then
/// what later rows store and n does not.
///
/// @param mirrors  scratch
template <typename Emit>
void for_each_symmetric_entry(const SparseMatrixView& P,
                              const Transposed& transposed,
                              std::size_t n,
                              std::vector<unsigned int>& mirrors,
                              const Emit& emit) {
    const Arrival* const arrivals = transposed.begin(n);
    const auto arrival_count = static_cast<std::size_t>(transposed.end(n) - arrivals);
    // For each arrival, the entry of row n that goes back to where it came from.
    mirrors.assign(arrival_count, kNotStored);
    for (unsigned int i = P.row_P[n]; i < P.row_P[n + 1]; ++i) {
        if (const Arrival* const mirror = transposed.find(P.col_P[i], n)) {
            mirrors[static_cast<std::size_t>(mirror - arrivals)] = i;
        }
    }
    std::size_t a = 0;
    for (; a < arrival_count && arrivals[a].row < n; ++a) {
        const double value = P.val_P[arrivals[a].entry];
        const double sum = mirrors[a] == kNotStored ? value : value + P.val_P[mirrors[a]];
        emit(arrivals[a].row, sum * 0.5);
    }
    for (unsigned int i = P.row_P[n]; i < P.row_P[n + 1]; ++i) {
        const unsigned int j = P.col_P[i];
        const Arrival* const mirror = transposed.find(j, n);
        if (mirror == nullptr) {
            emit(j, P.val_P[i] * 0.5);
        } else if (n <= j) {
            emit(j, (P.val_P[i] + P.val_P[mirror->entry]) * 0.5);
        }
    }
    for (; a < arrival_count; ++a) {
        if (arrivals[a].row > n && mirrors[a] == kNotStored) {
            emit(arrivals[a].row, P.val_P[arrivals[a].entry] * 0.5);
        }
    }
}

/// Runs `visit(n, mirrors)` for every row, spread over the cores.
template <typename Visit>
void for_each_row(std::size_t N, const Visit& visit) {
    parallel_for(N, kRowGrain, [&](std::size_t /*worker*/, IndexRange rows) {
        std::vector<unsigned int> mirrors;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            visit(n, mirrors);
        }
    });
}

}  // namespace

SparseMatrix neighbour_affinities(const double* points,
                                  std::size_t N,
                                  std::size_t dims,
                                  double perplexity,
                                  int K,
                                  const NeighbourHooks& hooks) {
    if (perplexity > static_cast<double>(K)) {
        tell(hooks.notes, FitNote::PerplexityAboveNeighbours);
    }
    if (K < 0 && N > 0) {
        throw WorkMemoryError();
    }
    const auto row_length = static_cast<std::size_t>(std::max(K, 0));
    check_entry_count(N * row_length);
    SparseMatrix matrix{malloc_array<unsigned int>(N + 1),
                        calloc_array<unsigned int>(N * row_length),
                        calloc_array<double>(N * row_length)};
    require_allocated(matrix.row_P, matrix.col_P, matrix.val_P);
    for (std::size_t n = 0; n <= N; ++n) {
        matrix.row_P[n] = static_cast<unsigned int>(n * row_length);
    }
    std::optional<NeighbourIndex> own_index;
    RandomStream& random = hooks.random != nullptr ? *hooks.random : process_random_stream();
    const NeighbourIndex& index =
        hooks.cached != nullptr ? hooks.cached->index(points, N, dims, random)
                                : own_index.emplace(points, N, dims, euclidean_metric(), random);
    tell(hooks.notes, FitNote::NeighbourIndexBuilt);
    if (hooks.graph != nullptr) {
        *hooks.graph = graph_without_neighbours(N, row_length);
    }
    const RowFiller rows(index, hooks, points, dims, perplexity, row_length, matrix);
    // In tree order: near points look at the same blocks.
    const std::size_t tasks = (N + kTargetsPerTask - 1) / kTargetsPerTask;
    const int workers = worker_count(tasks);
    std::vector<RowScratch> scratch(static_cast<std::size_t>(workers));
    for (RowScratch& worker : scratch) {
        worker.squared_distances.resize(row_length);
    }
    parallel_tasks(tasks, workers, [&](std::size_t task, std::size_t worker) {
        const std::size_t end = std::min((task + 1) * kTargetsPerTask, N);
        for (std::size_t i = task * kTargetsPerTask; i < end; i += kTargets) {
            rows.fill({i, std::min(i + kTargets, end)}, scratch[worker]);
        }
    });
    return matrix;
}  // NOLINT(clang-analyzer-unix.Malloc): the result owns its blocks

SparseMatrix symmetrized(const SparseMatrixView& P, std::size_t N) {
    const Transposed transposed(P, N);
    const auto row_counts = malloc_array<unsigned int>(N);
    auto row_P = malloc_array<unsigned int>(N + 1);
    require_allocated(row_counts, row_P);
    for_each_row(N, [&](std::size_t n, std::vector<unsigned int>& mirrors) {
        unsigned int count = 0;
        for_each_symmetric_entry(P, transposed, n, mirrors, [&](unsigned int, double) { ++count; });
        row_counts[n] = count;
    });
    const std::size_t entries =
        std::accumulate(row_counts.get(), row_counts.get() + N, std::size_t{0});
    check_entry_count(entries);
    row_P[0] = 0;
    std::partial_sum(row_counts.get(), row_counts.get() + N, row_P.get() + 1);
    SparseMatrix result{
        std::move(row_P), malloc_array<unsigned int>(entries), malloc_array<double>(entries)};
    require_allocated(result.col_P, result.val_P);
    for_each_row(N, [&](std::size_t n, std::vector<unsigned int>& mirrors) {
        std::size_t slot = result.row_P[n];
        for_each_symmetric_entry(P, transposed, n, mirrors, [&](unsigned int column, double value) {
            result.col_P[slot] = column;
            result.val_P[slot] = value;
            ++slot;
        });
    });
    return result;
}  // NOLINT(clang-analyzer-unix.Malloc): the result owns its blocks

}  // namespace ovik
