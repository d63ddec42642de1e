#include "stats/sparse_affinities.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "neighbours/approximate_search.h"
#include "neighbours/neighbour_graph.h"
#include "neighbours/neighbour_search.h"
#include "stats/cached_neighbours.h"
#include "stats/conditional_rows.h"
#include "stats/row_affinities.h"
#include "util/huge_pages.h"
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

/// Fills the rows of conditional affinities.
class RowFiller {
  public:
    /// @param worker_count  how many workers fill rows side by side
    /// @param conditional   has to outlive the object
    /// @param graph         null, or what takes the neighbours; filled up beforehand
    /// @throws WorkMemoryError
    RowFiller(RowAffinities& rows,
              std::size_t worker_count,
              ConditionalRows& conditional,
              NeighbourGraph* graph)
        : rows_(rows),
          K_(conditional.row_length),
          conditional_(conditional),
          graph_(graph) {
        rows_.prepare(worker_count, K_);
        if (conditional_.form == ValueForm::Single) {
            scratch_.assign(worker_count, std::vector<double>(K_));
        }
        if (conditional_.form == ValueForm::OneOrTwo) {
            found_ = malloc_array<unsigned int>(conditional_.rows);
            require_allocated(found_);
        }
    }

    /// Fills the row of point n: columns nearest first, and their affinities.
    ///
    /// @param nearest  the point itself and its neighbours
    void fill(std::size_t n, std::span<const NearRow> nearest, std::size_t worker) {
        unsigned int* const columns = conditional_.columns.get() + n * K_;
        const std::span<const NearRow> others = nearest.subspan(nearest.empty() ? 0 : 1);
        const std::size_t count = others.size();
        for (std::size_t m = 0; m < count; ++m) {
            columns[m] = others[m].row;
        }
        std::fill(columns + count, columns + K_, static_cast<unsigned int>(n));
        fillAffinities(n, others, worker);
        if (graph_ != nullptr) {
            for (std::size_t m = 0; m < count; ++m) {
                graph_->neighbours[n * K_ + m] = others[m].row;
            }
            for (std::size_t m = 0; m < count && !graph_->distances.empty(); ++m) {
                graph_->distances[n * K_ + m] = others[m].distance;
            }
        }
    }

    /// Once all rows are filled: where one has fewer neighbours than others, uniform affinities are
    /// more than one number after all.
    ///
    /// @throws WorkMemoryError
    void finish() {
        const std::size_t N = conditional_.rows;
        if (conditional_.form != ValueForm::OneOrTwo ||
            std::all_of(found_.get(), found_.get() + N, [this](unsigned int count) {
                return count == K_;
            })) {
            return;
        }
        conditional_.form = ValueForm::Double;
        conditional_.doubles = calloc_array<double>(N * K_);
        require_allocated(conditional_.doubles);
        for (std::size_t n = 0; n < N; ++n) {
            std::fill_n(conditional_.doubles.get() + n * K_,
                        found_[n],
                        1.0 / static_cast<double>(found_[n]));
        }
    }

  private:
    void fillAffinities(std::size_t n, std::span<const NearRow> others, std::size_t worker) {
        if (conditional_.form == ValueForm::OneOrTwo) {
            found_[n] = static_cast<unsigned int>(others.size());
            return;
        }
        const bool is_double = conditional_.form == ValueForm::Double;
        double* const affinities =
            is_double ? conditional_.doubles.get() + n * K_ : scratch_[worker].data();
        rows_.fill(others, affinities, worker);
        std::fill(affinities + others.size(), affinities + K_, 0.0);
        if (!is_double) {
            std::transform(affinities,
                           affinities + K_,
                           conditional_.singles.get() + n * K_,
                           [](double affinity) { return static_cast<float>(affinity); });
        }
    }

    RowAffinities& rows_;
    std::size_t K_;
    ConditionalRows& conditional_;
    NeighbourGraph* graph_;
    /// A row for each worker.
    std::vector<std::vector<double>> scratch_;
    /// How many neighbours each row has.
    MallocArray<unsigned int> found_;
};

/// Zeroed room for rows of some length.
///
/// @throws WorkMemoryError
ConditionalRows room_for(std::size_t N, std::size_t row_length, ValueForm form) {
    const std::size_t count = N * row_length;
    ConditionalRows rows;
    rows.rows = N;
    rows.row_length = row_length;
    rows.form = form;
    rows.columns = calloc_array<unsigned int>(count);
    require_allocated(rows.columns);
    prefer_huge_pages(rows.columns.get(), count * sizeof(unsigned int));
    if (form == ValueForm::Double) {
        rows.doubles = calloc_array<double>(count);
        require_allocated(rows.doubles);
        prefer_huge_pages(rows.doubles.get(), count * sizeof(double));
    } else if (form == ValueForm::Single) {
        rows.singles = calloc_array<float>(count);
        require_allocated(rows.singles);
        prefer_huge_pages(rows.singles.get(), count * sizeof(float));
    }
    return rows;
}

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
    CalibratedRows rows({{perplexity, static_cast<std::size_t>(std::max(K, 0))}},
                        platform_elementary());
    return conditional_affinities({points, N, dims}, rows, K, hooks);
}

ConditionalRows conditional_rows(MatrixView<const double> points,
                                 RowAffinities& rows,
                                 int K,
                                 ValueForm form,
                                 const NeighbourHooks& hooks) {
    const std::size_t N = points.rows;
    if (K < 0 && N > 0) {
        throw WorkMemoryError();
    }
    const auto row_length = static_cast<std::size_t>(std::max(K, 0));
    ConditionalRows conditional = room_for(N, row_length, form);
    RandomStream& random = hooks.random != nullptr ? *hooks.random : process_random_stream();
    const bool searches = hooks.cached == nullptr || !hooks.cached->areGiven();
    if (hooks.manner.is_approximate && searches &&
        !can_be_approximate(points.values, N, points.columns, row_length + 1, euclidean_metric())) {
        tell(hooks.notes, FitNote::SearchIsExact);
    }
    // Null for the search of the cache.
    const std::unique_ptr<NeighbourSearch> own_search =
        hooks.cached != nullptr
            ? hooks.cached->begin(points.values, N, points.columns, random, hooks.manner)
            : std::make_unique<NeighbourSearch>(N, points.columns, random);
    tell(hooks.notes, FitNote::NeighbourIndexBuilt);
    if (hooks.graph != nullptr) {
        *hooks.graph = graph_without_neighbours(N, row_length, hooks.wants_distances);
    }
    RowFiller filler(
        rows,
        hooks.cached != nullptr ? hooks.cached->workerCount() : own_search->workerCount(),
        conditional,
        hooks.graph);
    const auto fill = [&filler](std::size_t n,
                                std::span<const NearRow> nearest,
                                std::size_t worker) { filler.fill(n, nearest, worker); };
    std::optional<NeighbourRecall> recall;
    if (hooks.cached != nullptr) {
        recall = hooks.cached->findAll(
            points.values, row_length + 1, fill, own_search.get(), hooks.manner.on_stage);
    } else {
        own_search->findAll(points.values, row_length + 1, fill, hooks.manner);
        recall = own_search->recall();
    }
    if (hooks.recall != nullptr) {
        *hooks.recall = recall;
    }
    filler.finish();
    return conditional;
}  // NOLINT(clang-analyzer-unix.Malloc): the result owns its blocks

SparseMatrix conditional_affinities(MatrixView<const double> points,
                                    RowAffinities& rows,
                                    int K,
                                    const NeighbourHooks& hooks) {
    const std::size_t N = points.rows;
    const auto row_length = static_cast<std::size_t>(std::max(K, 0));
    check_entry_count(N * row_length);
    auto row_P = malloc_array<unsigned int>(N + 1);
    require_allocated(row_P);
    for (std::size_t n = 0; n <= N; ++n) {
        row_P[n] = static_cast<unsigned int>(n * row_length);
    }
    ConditionalRows conditional = conditional_rows(points, rows, K, ValueForm::Double, hooks);
    return {std::move(row_P), std::move(conditional.columns), std::move(conditional.doubles)};
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
