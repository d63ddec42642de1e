#include "neighbours/approximate_search.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "neighbours/join_partners.h"
#include "neighbours/measured_recall.h"
#include "neighbours/nearest_lists.h"
#include "neighbours/projection_trees.h"
#include "neighbours/row_extent.h"
#include "neighbours/row_join.h"
#include "util/parallel.h"
#include "util/stage_count.h"

namespace ovik {

namespace {

/// Trees, and most rows of a leaf: more of both find more, in more time. As the rows of a leaf are
/// compared by products of blocks, large leaves cost little beside small ones.
constexpr std::size_t kTrees = 12;
constexpr std::size_t kLeafRows = 2048;

/// Most partners that a row joins in a round, new and old ones each.
constexpr std::size_t kPartners = 48;

/// Rounds end when at most this share of the neighbours is new, or there were so many.
constexpr double kFewNew = 0.002;
constexpr std::size_t kMostRounds = 24;

/// So many rounds are expected: more of them are not told of.
constexpr std::size_t kToldRounds = 8;

/// Rows whose neighbours are joined by a task.
constexpr std::size_t kRowsOfTask = 256;

constexpr std::size_t kSampledRows = 1000;

/// Lists are longer than they are wanted: short ones find few ways from row to row.
constexpr std::size_t kLeastLength = 48;

/// Tells of work that takes all rows up several times as of a share of the rows.
OnStage told_as_rows(const OnStage& on_stage, std::size_t N) {
    if (!on_stage) {
        return {};
    }
    return [&on_stage, N](Stage stage, std::uint64_t done, std::uint64_t total) {
        const double share = static_cast<double>(done) / static_cast<double>(total);
        const auto rows = static_cast<std::uint64_t>(share * static_cast<double>(N));
        on_stage(stage, done == total ? N : rows, N);
    };
}

std::size_t list_length(std::size_t count, std::size_t N) {
    return std::min(std::max(kLeastLength, count + count / 8), N - 1);
}

class ApproximateSearch {
  public:
    ApproximateSearch(const double* points,
                      std::size_t N,
                      std::size_t dims,
                      std::size_t count,
                      const Metric& metric,
                      const OnStage& on_stage)
        : points_(points),
          N_(N),
          dims_(dims),
          count_(count),
          metric_(metric),
          scale_(packing_scale(*packable_extent(points, N, dims, metric))),
          lists_(points, N, dims, list_length(count, N), metric),
          joins_(static_cast<std::size_t>(worker_count(N)),
                 RowJoin(points, dims, scale_, metric, lists_)),
          on_stage_(told_as_rows(on_stage, N)),
          progress_(on_stage_, Stage::Neighbours, N * (kTrees + kToldRounds + 1)) {}

    void growTrees() {
        for (std::size_t tree = 0; tree < kTrees && !progress_.isStopped(); ++tree) {
            visit_projection_tree(points_,
                                  N_,
                                  dims_,
                                  metric_,
                                  tree,
                                  kLeafRows,
                                  [&](std::span<const std::uint32_t> rows, std::size_t worker) {
                                      if (!progress_.isStopped()) {
                                          joins_[worker].joinAll(rows);
                                          progress_.add(rows.size());
                                      }
                                  });
        }
    }

    void descend() {
        std::size_t round = 0;
        for (; round < kMostRounds && newShare() > kFewNew; ++round) {
            joinNeighbours(round);
        }
        progress_.add(N_ * (kToldRounds - std::min(round, kToldRounds)));
    }

    /// Runs `visit(row, neighbours, worker)` for every row.
    template <typename Visit>
    void visitRows(const Visit& visit) {
        parallel_for(N_, 1, [&](std::size_t worker, IndexRange rows) {
            std::vector<NearRow> neighbours;
            for (std::size_t row = rows.begin; row < rows.end && !progress_.isStopped(); ++row) {
                neighbours.clear();
                for (std::size_t place = 0; place < std::min(count_, lists_.count(row)); ++place) {
                    neighbours.push_back(lists_.at(row, place));
                }
                visit(row, neighbours, worker);
                progress_.add(1);
            }
        });
    }

    [[nodiscard]] NeighbourRecall recall() const {
        return measured_recall(points_, dims_, scale_, metric_, lists_, count_, kSampledRows);
    }

  private:
    void joinNeighbours(std::size_t round) {
        const JoinPartners partners(lists_, kPartners, round);
        const std::size_t tasks = (N_ + kRowsOfTask - 1) / kRowsOfTask;
        parallel_tasks(tasks, worker_count(N_), [&](std::size_t task, std::size_t worker) {
            if (progress_.isStopped()) {
                return;
            }
            const std::size_t begin = task * kRowsOfTask;
            const std::size_t end = std::min(begin + kRowsOfTask, N_);
            for (std::size_t row = begin; row < end; ++row) {
                joins_[worker].joinFresh(
                    partners.fresh(row), partners.known(row), points_ + row * dims_);
            }
            if (round < kToldRounds) {
                progress_.add(end - begin);
            }
        });
    }

    /// The share of the neighbours that have not been joined with others.
    [[nodiscard]] double newShare() const {
        std::size_t count = 0;
        for (std::size_t row = 0; row < N_; ++row) {
            for (std::size_t place = 0; place < lists_.count(row); ++place) {
                count += lists_.isNew(row, place) ? 1 : 0;
            }
        }
        return static_cast<double>(count) / static_cast<double>(N_ * lists_.length());
    }

    const double* points_;
    std::size_t N_;
    std::size_t dims_;
    std::size_t count_;
    const Metric& metric_;
    double scale_;
    NearestLists lists_;
    std::vector<RowJoin> joins_;
    OnStage on_stage_;
    StageCount progress_;
};

}  // namespace

double approximate_search_memory(std::size_t N, std::size_t count) {
    // Row and distance of each neighbour; partners of two kinds; counts, limits, what draws need,
    // and how far the farthest neighbours are, or before that the scratch of a tree.
    const auto length = static_cast<double>(std::max(kLeastLength, count + count / 8));
    const double of_row = 12.0 * length + 8.0 * static_cast<double>(kPartners) + 64.0;
    return of_row * static_cast<double>(N);
}

bool can_be_approximate(const double* points,
                        std::size_t N,
                        std::size_t dims,
                        std::size_t count,
                        const Metric& metric) {
    return count > 1 && count <= N && N <= NearestLists::kMostRows &&
           packable_extent(points, N, dims, metric).has_value();
}

NeighbourRecall find_approximately(
    const double* points,
    std::size_t N,
    std::size_t dims,
    std::size_t count,
    const Metric& metric,
    const OnStage& on_stage,
    const std::function<
        void(std::size_t row, std::span<const NearRow> neighbours, std::size_t worker)>& visit) {
    ApproximateSearch search(points, N, dims, count, metric, on_stage);
    search.growTrees();
    search.descend();
    const NeighbourRecall recall = search.recall();
    search.visitRows(visit);
    return recall;
}

}  // namespace ovik
