#include "stats/rank_search.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "neighbours/approximate_search.h"
#include "neighbours/neighbour_graph.h"
#include "neighbours/neighbour_search.h"
#include "stats/row_affinities.h"
#include "util/byte_queue.h"
#include "util/malloc_array.h"

namespace ovik {

namespace {

/// Rows with their neighbours as one worker has found them, each with `K` places.
struct FoundRows {
    std::vector<std::uint32_t> rows;
    /// How many neighbours each has; the places behind those are not filled.
    std::vector<std::uint32_t> counts;
    std::vector<std::uint32_t> columns;
    std::vector<double> doubles;
    std::vector<float> singles;
    /// Only for a graph with distances.
    std::vector<double> distances;
};

/// What is stored of each neighbour.
struct Contents {
    std::size_t K;
    ValueForm form;
    bool has_distances;
};

/// Takes what the search visits.
class Finds {
  public:
    Finds(RowAffinities& affinities, std::size_t worker_count, const Contents& contents)
        : affinities_(affinities),
          contents_(contents),
          of_workers_(worker_count),
          scratch_(worker_count, std::vector<double>(contents.K)) {
        affinities_.prepare(worker_count, contents.K);
    }

    void add(std::size_t row, std::span<const NearRow> nearest, std::size_t worker) {
        FoundRows& found = of_workers_[worker];
        const std::span<const NearRow> others = nearest.subspan(nearest.empty() ? 0 : 1);
        const std::size_t K = contents_.K;
        found.rows.push_back(static_cast<std::uint32_t>(row));
        found.counts.push_back(static_cast<std::uint32_t>(others.size()));
        for (const NearRow& other : others) {
            found.columns.push_back(other.row);
        }
        found.columns.resize(found.rows.size() * K);
        if (contents_.has_distances) {
            for (const NearRow& other : others) {
                found.distances.push_back(other.distance);
            }
            found.distances.resize(found.rows.size() * K);
        }
        if (contents_.form != ValueForm::OneOrTwo) {
            addValues(others, worker);
        }
    }

    /// Whether a row has fewer neighbours than there are places.
    [[nodiscard]] bool haveGaps() const {
        return std::any_of(of_workers_.begin(), of_workers_.end(), [&](const FoundRows& found) {
            return std::any_of(found.counts.begin(), found.counts.end(), [&](std::uint32_t count) {
                return count < contents_.K;
            });
        });
    }

    /// The rows in a range, and what has been found of them.
    [[nodiscard]] std::vector<std::byte> packed(IndexRange rows) const {
        ByteQueue queue;
        const std::size_t K = contents_.K;
        for (const FoundRows& found : of_workers_) {
            for (std::size_t i = 0; i < found.rows.size(); ++i) {
                if (found.rows[i] < rows.begin || found.rows[i] >= rows.end) {
                    continue;
                }
                queue.put(found.rows[i]);
                queue.put(found.counts[i]);
                queue.putAll(std::span(found.columns).subspan(i * K, K));
                if (!found.doubles.empty()) {
                    queue.putAll(std::span(found.doubles).subspan(i * K, K));
                }
                if (!found.singles.empty()) {
                    queue.putAll(std::span(found.singles).subspan(i * K, K));
                }
                if (contents_.has_distances) {
                    queue.putAll(std::span(found.distances).subspan(i * K, K));
                }
            }
        }
        return queue.take();
    }

  private:
    void addValues(std::span<const NearRow> others, std::size_t worker) {
        FoundRows& found = of_workers_[worker];
        std::vector<double>& values = scratch_[worker];
        affinities_.fill(others, values.data(), worker);
        std::fill(values.begin() + static_cast<std::ptrdiff_t>(others.size()), values.end(), 0.0);
        if (contents_.form == ValueForm::Double) {
            found.doubles.insert(found.doubles.end(), values.begin(), values.end());
            return;
        }
        for (const double value : values) {
            found.singles.push_back(static_cast<float>(value));
        }
    }

    RowAffinities& affinities_;
    Contents contents_;
    std::vector<FoundRows> of_workers_;
    std::vector<std::vector<double>> scratch_;
};

/// The rows that a rank has, as they come in.
class OwnRows {
  public:
    OwnRows(IndexRange own, const Contents& contents) : own_(own), contents_(contents) {
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

    void take(std::span<const std::byte> bytes) {
        for (ByteReader reader(bytes); !reader.isAtEnd();) {
            const auto row = reader.get<std::uint32_t>();
            const std::size_t place = row - own_.begin;
            const std::size_t first = place * contents_.K;
            counts_[place] = reader.get<std::uint32_t>();
            reader.getAll(std::span(rows_.columns.get() + first, contents_.K));
            std::fill(rows_.columns.get() + first + counts_[place],
                      rows_.columns.get() + first + contents_.K,
                      row);
            if (contents_.form == ValueForm::Double) {
                reader.getAll(std::span(rows_.doubles.get() + first, contents_.K));
            } else if (contents_.form == ValueForm::Single) {
                reader.getAll(std::span(rows_.singles.get() + first, contents_.K));
            }
            if (contents_.has_distances) {
                reader.getAll(std::span(distances_).subspan(first, contents_.K));
            }
        }
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
    const std::size_t N = points.rows;
    if (hooks.manner.is_approximate &&
        !can_be_approximate(points.values, N, points.columns, contents.K + 1, euclidean_metric())) {
        tell(hooks.notes, FitNote::SearchIsExact);
    }
    NeighbourSearch search(N, points.columns, *hooks.random);
    tell(hooks.notes, FitNote::NeighbourIndexBuilt);
    std::optional<Finds> finds(std::in_place, affinities, search.workerCount(), contents);
    NeighbourSearchManner manner = hooks.manner;
    manner.share = {ranks.rank(), ranks.count()};
    search.findAll(
        points.values,
        contents.K + 1,
        [&](std::size_t row, std::span<const NearRow> nearest, std::size_t worker) {
            finds->add(row, nearest, worker);
        },
        manner);
    if (hooks.recall != nullptr) {
        *hooks.recall = search.recall();
    }
    const bool have_gaps = is_so_for_any(ranks, finds->haveGaps());
    OwnRows own(rows.own(), contents);
    ranks.exchange([&](std::size_t to) { return finds->packed(rows.of(to)); },
                   [&](std::size_t /*from*/, std::span<const std::byte> bytes) { own.take(bytes); },
                   Errand::Neighbours);
    finds.reset();
    if (hooks.graph != nullptr) {
        collect_graph(own, rows, contents, *hooks.graph);
    }
    if (form == ValueForm::OneOrTwo && have_gaps) {
        own.storeUniform();
    }
    return own.release();
}

}  // namespace ovik
