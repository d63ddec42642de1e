#include "stats/sparse_affinities.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "neighbours/neighbour_graph.h"
#include "neighbours/neighbour_search.h"
#include "stats/cached_neighbours.h"
#include "stats/row_affinities.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

void check_entry_count(std::size_t entries) {
    if (entries > std::numeric_limits<unsigned int>::max()) {
        throw std::length_error("the similarity matrix has more than 2^32 - 1 entries (" +
                                std::to_string(entries) + "): lower the perplexity");
    }
}

/// Fills rows of the matrix of conditional affinities.
class RowFiller {
  public:
    /// @param K             entries of a row
    /// @param worker_count  how many workers fill rows side by side
    /// @param matrix        has to outlive the object
    /// @param graph         null, or what takes the neighbours; filled up beforehand
    RowFiller(RowAffinities& rows,
              std::size_t K,
              std::size_t worker_count,
              SparseMatrix& matrix,
              NeighbourGraph* graph)
        : rows_(rows),
          K_(K),
          matrix_(matrix),
          graph_(graph) {
        rows_.prepare(worker_count, K);
    }

    /// Fills the row of point n: columns nearest first, and their affinities.
    ///
    /// @param nearest  the point itself and its neighbours
    void fill(std::size_t n, std::span<const NearRow> nearest, std::size_t worker) {
        unsigned int* const columns = matrix_.col_P.get() + n * K_;
        double* const affinities = matrix_.val_P.get() + n * K_;
        const std::span<const NearRow> others = nearest.subspan(nearest.empty() ? 0 : 1);
        const std::size_t count = others.size();
        for (std::size_t m = 0; m < count; ++m) {
            columns[m] = others[m].row;
        }
        rows_.fill(others, affinities, worker);
        std::fill(columns + count, columns + K_, static_cast<unsigned int>(n));
        std::fill(affinities + count, affinities + K_, 0.0);
        if (graph_ != nullptr) {
            for (std::size_t m = 0; m < count; ++m) {
                graph_->neighbours[n * K_ + m] = others[m].row;
                graph_->distances[n * K_ + m] = others[m].distance;
            }
        }
    }

  private:
    RowAffinities& rows_;
    std::size_t K_;
    SparseMatrix& matrix_;
    NeighbourGraph* graph_;
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

  private:
    MallocArray<std::size_t> starts_;
    MallocArray<Arrival> arrivals_;
};

/// Goes through the rows of the symmetric form of a matrix.
class SymmetricRows {
  public:
    SymmetricRows(const SparseMatrixView& P, const Transposed& transposed, std::size_t N)
        : P_(P),
          transposed_(transposed),
          places_(N, kNotStored) {}

    /// How many entries row n has.
    unsigned int count(std::size_t n) {
        const Arrival* const begin = transposed_.begin(n);
        const Arrival* const end = transposed_.end(n);
        unsigned int entries = 0;
        for (const Arrival* arrival = begin; arrival != end; ++arrival) {
            places_[arrival->row] = kUnmatched;
            entries += arrival->row == n ? 0 : 1;
        }
        for (unsigned int i = P_.row_P[n]; i < P_.row_P[n + 1]; ++i) {
            const unsigned int j = P_.col_P[i];
            entries += places_[j] == kNotStored || n <= j ? 1 : 0;
            if (j > n && places_[j] == kUnmatched) {
                // What row j stores about n is no entry of its own.
                places_[j] = kMatched;
                --entries;
            }
        }
        for (const Arrival* arrival = begin; arrival != end; ++arrival) {
            places_[arrival->row] = kNotStored;
        }
        return entries;
    }

    /// Writes row n, in the order in which rows 0, 1, ... bring its entries up: what earlier rows
    /// store about n, then its own entries, then what later rows store and n does not.
    void write(std::size_t n, unsigned int* columns, double* values) {
        findMirrors(n);
        const Arrival* const arrivals = transposed_.begin(n);
        const std::size_t arrival_count = mirrors_.size();
        columns_.resize(arrival_count + own_places_.size());
        values_.resize(columns_.size());
        std::size_t slot = 0;
        // Where an entry is stored or not cannot be foretold: it is written in any case, and
        // written over by the next.
        const auto put = [&](bool is_stored, unsigned int column, double value) {
            columns_[slot] = column;
            values_[slot] = value * 0.5;
            slot += is_stored ? 1 : 0;
        };
        std::size_t a = 0;
        for (; a < arrival_count && arrivals[a].row < n; ++a) {
            const double value = P_.val_P[arrivals[a].entry];
            const bool has_mirror = mirrors_[a] != kNotStored;
            const double other = P_.val_P[has_mirror ? mirrors_[a] : arrivals[a].entry];
            put(true, arrivals[a].row, has_mirror ? value + other : value);
        }
        for (unsigned int i = P_.row_P[n]; i < P_.row_P[n + 1]; ++i) {
            const unsigned int j = P_.col_P[i];
            const unsigned int place = own_places_[i - P_.row_P[n]];
            const bool has_mirror = place != kNotStored;
            const double other = P_.val_P[has_mirror ? arrivals[place].entry : i];
            put(!has_mirror || n <= j, j, has_mirror ? P_.val_P[i] + other : P_.val_P[i]);
        }
        for (; a < arrival_count; ++a) {
            const bool is_other = arrivals[a].row > n && mirrors_[a] == kNotStored;
            put(is_other, arrivals[a].row, P_.val_P[arrivals[a].entry]);
        }
        std::copy_n(columns_.begin(), slot, columns);
        std::copy_n(values_.begin(), slot, values);
    }

  private:
    static constexpr unsigned int kUnmatched = 0;
    static constexpr unsigned int kMatched = 1;

    /// Finds the pairs of entries that lie across the diagonal from one another. Of several
    /// arrivals from a row the last counts.
    void findMirrors(std::size_t n) {
        const Arrival* const arrivals = transposed_.begin(n);
        const auto arrival_count = static_cast<std::size_t>(transposed_.end(n) - arrivals);
        mirrors_.assign(arrival_count, kNotStored);
        own_places_.clear();
        for (std::size_t a = 0; a < arrival_count; ++a) {
            places_[arrivals[a].row] = static_cast<unsigned int>(a);
            // Far from one another.
            __builtin_prefetch(P_.val_P + arrivals[a].entry);
        }
        for (unsigned int i = P_.row_P[n]; i < P_.row_P[n + 1]; ++i) {
            const unsigned int place = places_[P_.col_P[i]];
            own_places_.push_back(place);
            if (place != kNotStored) {
                mirrors_[place] = i;
            }
        }
        for (std::size_t a = 0; a < arrival_count; ++a) {
            places_[arrivals[a].row] = kNotStored;
        }
    }

    const SparseMatrixView& P_;
    const Transposed& transposed_;
    /// For each row, its place among the arrivals of the row that is visited.
    std::vector<unsigned int> places_;
    /// For each arrival, the entry of row n that goes back to where it came from.
    std::vector<unsigned int> mirrors_;
    /// For each entry of row n, the place of the arrival from where it goes to.
    std::vector<unsigned int> own_places_;
    /// The row that is written.
    std::vector<unsigned int> columns_;
    std::vector<double> values_;
};

/// Runs `visit(n, rows)` for every row, spread over the cores.
template <typename Visit>
void for_each_row(const SparseMatrixView& P,
                  const Transposed& transposed,
                  std::size_t N,
                  const Visit& visit) {
    const std::size_t grain = std::max(kRowGrain, N / static_cast<std::size_t>(kMostCounters));
    parallel_for(N, grain, [&](std::size_t /*worker*/, IndexRange range) {
        SymmetricRows rows(P, transposed, N);
        for (std::size_t n = range.begin; n < range.end; ++n) {
            visit(n, rows);
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
    CalibratedRows rows({{perplexity, static_cast<std::size_t>(std::max(K, 0))}});
    return conditional_affinities({points, N, dims}, rows, K, hooks);
}

SparseMatrix conditional_affinities(MatrixView<const double> points,
                                    RowAffinities& rows,
                                    int K,
                                    const NeighbourHooks& hooks) {
    const std::size_t N = points.rows;
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
    RandomStream& random = hooks.random != nullptr ? *hooks.random : process_random_stream();
    // Null for the search of the cache.
    const std::unique_ptr<NeighbourSearch> own_search =
        hooks.cached != nullptr ? hooks.cached->begin(points.values, N, points.columns, random)
                                : std::make_unique<NeighbourSearch>(N, points.columns, random);
    tell(hooks.notes, FitNote::NeighbourIndexBuilt);
    if (hooks.graph != nullptr) {
        *hooks.graph = graph_without_neighbours(N, row_length);
    }
    RowFiller filler(
        rows,
        row_length,
        hooks.cached != nullptr ? hooks.cached->workerCount() : own_search->workerCount(),
        matrix,
        hooks.graph);
    StageCount count(hooks.on_stage, Stage::Neighbours, N);
    const auto fill = [&](std::size_t n, std::span<const NearRow> nearest, std::size_t worker) {
        filler.fill(n, nearest, worker);
        count.step();
    };
    if (hooks.cached != nullptr) {
        hooks.cached->findAll(points.values, row_length + 1, fill, own_search.get());
    } else {
        own_search->findAll(points.values, row_length + 1, fill);
    }
    return matrix;
}  // NOLINT(clang-analyzer-unix.Malloc): the result owns its blocks

SparseMatrix symmetrized(const SparseMatrixView& P, std::size_t N) {
    const Transposed transposed(P, N);
    const auto row_counts = malloc_array<unsigned int>(N);
    auto row_P = malloc_array<unsigned int>(N + 1);
    require_allocated(row_counts, row_P);
    for_each_row(P, transposed, N, [&](std::size_t n, SymmetricRows& rows) {
        row_counts[n] = rows.count(n);
    });
    const std::size_t entries =
        std::accumulate(row_counts.get(), row_counts.get() + N, std::size_t{0});
    check_entry_count(entries);
    row_P[0] = 0;
    std::partial_sum(row_counts.get(), row_counts.get() + N, row_P.get() + 1);
    SparseMatrix result{
        std::move(row_P), malloc_array<unsigned int>(entries), malloc_array<double>(entries)};
    require_allocated(result.col_P, result.val_P);
    for_each_row(P, transposed, N, [&](std::size_t n, SymmetricRows& rows) {
        const unsigned int start = result.row_P[n];
        rows.write(n, result.col_P.get() + start, result.val_P.get() + start);
    });
    return result;
}  // NOLINT(clang-analyzer-unix.Malloc): the result owns its blocks

}  // namespace ovik
