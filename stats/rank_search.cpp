#include "stats/rank_search.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "neighbours/approximate_search.h"
#include "neighbours/neighbour_graph.h"
#include "neighbours/neighbour_search.h"
#include "stats/rank_nearest.h"
#include "stats/row_affinities.h"
#include "util/byte_queue.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Fewest rows for which another thread pays.
constexpr std::size_t kRowGrain = 64;

/// What is stored of each neighbour.
struct Contents {
    std::size_t K;
    ValueForm form;
    bool has_distances;
};

/// The rows that a rank has, as they come in.
class OwnRows {
  public:
    /// @param affinities  has to outlive the object
    OwnRows(IndexRange own,
            const Contents& contents,
            RowAffinities& affinities,
            std::size_t worker_count)
        : own_(own),
          contents_(contents),
          affinities_(affinities),
          scratch_(worker_count, std::vector<double>(contents.K)) {
        affinities_.prepare(worker_count, contents.K);
        const std::size_t count = own.size() * contents.K;
        rows_.rows = own.size();
        rows_.row_length = contents.K;
        rows_.form = contents.form;
        rows_.columns = malloc_array<std::uint32_t>(count);
        require_allocated(rows_.columns);
        if (contents.form == ValueForm::Double) {
            rows_.doubles = malloc_array<double>(count);
            require_allocated(rows_.doubles);
        } else if (contents.form == ValueForm::Single) {
            rows_.singles = malloc_array<float>(count);
            require_allocated(rows_.singles);
        }
        counts_.resize(own.size());
        distances_.resize(contents.has_distances ? count : 0);
    }

    /// Takes the nearest others of a row; of several rows side by side.
    ///
    /// @param place  of the row among those of the rank
    void take(std::size_t place, std::span<const NearRow> others, std::size_t worker) {
        const std::size_t K = contents_.K;
        std::uint32_t* const columns = rows_.columns.get() + place * K;
        counts_[place] = static_cast<std::uint32_t>(others.size());
        for (std::size_t k = 0; k < K; ++k) {
            columns[k] =
                k < others.size() ? others[k].row : static_cast<std::uint32_t>(own_.begin + place);
        }
        for (std::size_t k = 0; contents_.has_distances && k < others.size(); ++k) {
            distances_[place * K + k] = others[k].distance;
        }
        if (contents_.form == ValueForm::OneOrTwo) {
            return;
        }
        std::vector<double>& values = scratch_[worker];
        affinities_.fill(others, values.data(), worker);
        std::fill(values.begin() + static_cast<std::ptrdiff_t>(others.size()), values.end(), 0.0);
        for (std::size_t k = 0; k < K; ++k) {
            if (contents_.form == ValueForm::Double) {
                rows_.doubles[place * K + k] = values[k];
            } else {
                rows_.singles[place * K + k] = static_cast<float>(values[k]);
            }
        }
    }

    /// Whether a row has fewer neighbours than there are places.
    [[nodiscard]] bool haveGaps() const {
        return std::any_of(counts_.begin(), counts_.end(), [&](std::uint32_t count) {
            return count < contents_.K;
        });
    }

    /// Where a row of any rank has gaps, uniform affinities are more than one number.
    void storeUniform() {
        const std::size_t K = contents_.K;
        rows_.form = ValueForm::Double;
        rows_.doubles = calloc_array<double>(own_.size() * K);
        require_allocated(rows_.doubles);
        for (std::size_t n = 0; n < own_.size(); ++n) {
            std::fill_n(
                rows_.doubles.get() + n * K, counts_[n], 1.0 / static_cast<double>(counts_[n]));
        }
    }

    /// What the graph of all rows has of these.
    [[nodiscard]] std::vector<std::byte> packedForGraph() const {
        ByteQueue queue;
        const std::size_t K = contents_.K;
        for (std::size_t n = 0; n < own_.size(); ++n) {
            queue.put(counts_[n]);
            queue.putAll(std::span<const std::uint32_t>(rows_.columns.get() + n * K, K));
            if (contents_.has_distances) {
                queue.putAll(std::span(distances_).subspan(n * K, K));
            }
        }
        return queue.take();
    }

    ConditionalRows release() { return std::move(rows_); }

  private:
    IndexRange own_;
    Contents contents_;
    RowAffinities& affinities_;
    /// The values of a row, of each worker.
    std::vector<std::vector<double>> scratch_;
    ConditionalRows rows_;
    std::vector<std::uint32_t> counts_;
    std::vector<double> distances_;
};

/// Fills some rows of the graph; the places without a neighbour stay as they are.
void fill_graph(NeighbourGraph& graph, IndexRange rows, std::span<const std::byte> bytes) {
    const std::size_t K = graph.neighbour_count;
    std::vector<double> distances(graph.distances.empty() ? 0 : K);
    ByteReader reader(bytes);
    for (std::size_t n = rows.begin; n < rows.end; ++n) {
        const auto count = reader.get<std::uint32_t>();
        reader.getAll(std::span(graph.neighbours).subspan(n * K, K));
        reader.getAll(std::span(distances));
        for (std::size_t k = 0; k < count && !distances.empty(); ++k) {
            graph.distances[n * K + k] = distances[k];
        }
    }
}

/// Brings the first rank the graph of all rows.
void collect_graph(const OwnRows& own,
                   const RankRows& rows,
                   const Contents& contents,
                   NeighbourGraph& graph) {
    if (rows.ranks().isFirst()) {
        graph = graph_without_neighbours(rows.count(), contents.K, contents.has_distances);
    }
    rows.ranks().collect(
        own.packedForGraph(),
        [&](std::size_t from, std::span<const std::byte> bytes) {
            fill_graph(graph, rows.of(from), bytes);
        },
        Errand::Neighbours);
}

/// Whether it is so for any of the ranks.
bool is_so_for_any(Ranks& ranks, bool is_so) {
    std::int64_t count = is_so ? 1 : 0;
    ranks.sum({&count, 1}, Errand::Orders);
    return count > 0;
}

/// Whether the search is to be approximate, and can be with the first rank's rows.
bool is_approximate(MatrixView<const double> points,
                    std::size_t K,
                    const NeighbourHooks& hooks,
                    Ranks& ranks) {
    if (!hooks.manner.is_approximate) {
        return false;
    }
    bool can_be =
        ranks.isFirst() &&
        can_be_approximate(points.values, points.rows, points.columns, K + 1, euclidean_metric());
    ranks.hear(std::span(&can_be, 1), Errand::Orders);
    if (!can_be) {
        tell(hooks.notes, FitNote::SearchIsExact);
    }
    return can_be;
}

/// Looks at all rows, of which it gives each rank a copy, and takes what it finds for its own.
void search_approximately(MatrixView<const double> points,
                          NeighbourSearch& search,
                          const NeighbourHooks& hooks,
                          const RankRows& rows,
                          std::size_t K,
                          OwnRows& own) {
    Ranks& ranks = rows.ranks();
    std::vector<double> copy(ranks.isFirst() ? 0 : points.size());
    if (ranks.isFirst()) {
        ranks.tell(points.all(), Errand::Rows);
    } else {
        ranks.hear(std::span(copy), Errand::Rows);
    }
    const IndexRange wanted = rows.own();
    search.findAll(
        ranks.isFirst() ? points.values : copy.data(),
        K + 1,
        [&](std::size_t row, std::span<const NearRow> nearest, std::size_t worker) {
            if (row >= wanted.begin && row < wanted.end) {
                own.take(row - wanted.begin, nearest.subspan(1), worker);
            }
        },
        hooks.manner);
}

/// Finds the nearest of all rows exactly, while parts of them go round.
void search_exactly(MatrixView<const double> points,
                    NeighbourSearch& search,
                    const NeighbourHooks& hooks,
                    const RankRows& rows,
                    std::size_t K,
                    OwnRows& own) {
    const RankNearest nearest(points, K, search, hooks.manner, rows);
    parallel_for(rows.own().size(), kRowGrain, [&](std::size_t worker, IndexRange places) {
        for (std::size_t place = places.begin; place < places.end; ++place) {
            own.take(place, nearest.of(place), worker);
        }
    });
}

}  // namespace

ConditionalRows conditional_rows_of_rank(MatrixView<const double> points,
                                         RowAffinities& affinities,
                                         int K,
                                         ValueForm form,
                                         const NeighbourHooks& hooks,
                                         const RankRows& rows) {
    Ranks& ranks = rows.ranks();
    const Contents contents{
        static_cast<std::size_t>(K), form, hooks.graph != nullptr && hooks.wants_distances};
    const bool approximates = is_approximate(points, contents.K, hooks, ranks);
    NeighbourSearch search(points.rows, points.columns, *hooks.random);
    tell(hooks.notes, FitNote::NeighbourIndexBuilt);
    OwnRows own(rows.own(), contents, affinities, search.workerCount());
    if (approximates) {
        search_approximately(points, search, hooks, rows, contents.K, own);
    } else {
        search_exactly(points, search, hooks, rows, contents.K, own);
    }
    if (hooks.recall != nullptr) {
        *hooks.recall = search.recall();
    }
    if (hooks.graph != nullptr) {
        collect_graph(own, rows, contents, *hooks.graph);
    }
    const bool have_gaps = is_so_for_any(ranks, own.haveGaps());
    if (form == ValueForm::OneOrTwo && have_gaps) {
        own.storeUniform();
    }
    return own.release();
}

}  // namespace ovik
