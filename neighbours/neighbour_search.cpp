#include "neighbours/neighbour_search.h"

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "neighbours/approximate_search.h"
#include "util/parallel.h"
#include "util/stage_count.h"

namespace ovik {

namespace {

constexpr std::size_t kTargetsPerTask = 8 * kTargets;

/// The stream that numbers were drawn from before.
class RepeatedStream final : public RandomStream {
  public:
    explicit RepeatedStream(const std::vector<int>& numbers) : numbers_(numbers) {}

    void seed(unsigned int /*seed*/) override { next_ = 0; }

    int next() override { return numbers_[next_++]; }

  private:
    const std::vector<int>& numbers_;
    std::size_t next_ = 0;
};

/// Gives up where most rows are uncertain, as those of a lattice are.
class Patience {
  public:
    void count(bool is_certain) { ++(is_certain ? certain_ : uncertain_); }

    [[nodiscard]] bool isAtAnEnd() const {
        constexpr std::size_t kFirstRows = 256;
        return uncertain_ > kFirstRows && uncertain_ > certain_;
    }

  private:
    std::atomic<std::size_t> certain_{0};
    std::atomic<std::size_t> uncertain_{0};
};

/// Asks a tree for the neighbours of some rows.
class TreeQueries {
  public:
    TreeQueries(const NeighbourIndex& tree,
                const double* points,
                std::size_t dims,
                std::size_t count,
                const NeighbourSearch::Visit& visit,
                NeighbourTies ties)
        : tree_(tree),
          points_(points),
          dims_(dims),
          count_(count),
          visit_(visit),
          ties_(ties) {}

    /// What a worker needs.
    struct Scratch {
        NeighbourIndex::Queries queries;
        std::vector<NearRow> nearest;
    };

    /// Visits at most kTargets rows.
    void ask(std::span<const std::uint32_t> rows, std::size_t worker, Scratch& scratch) const {
        const double* targets[kTargets];
        for (std::size_t t = 0; t < rows.size(); ++t) {
            targets[t] = points_ + rows[t] * dims_;
        }
        scratch.queries.ties = ties_;
        tree_.search(targets, rows.size(), count_, scratch.queries);
        for (std::size_t t = 0; t < rows.size(); ++t) {
            scratch.nearest.clear();
            for (const auto& neighbour : scratch.queries.neighbours[t]) {
                scratch.nearest.push_back({tree_.rowAt(neighbour.position), neighbour.distance});
            }
            visit_(rows[t], scratch.nearest, worker);
        }
    }

  private:
    const NeighbourIndex& tree_;
    const double* points_;
    std::size_t dims_;
    std::size_t count_;
    const NeighbourSearch::Visit& visit_;
    NeighbourTies ties_;
};

}  // namespace

NeighbourSearch::NeighbourSearch(std::size_t N,
                                 std::size_t dims,
                                 RandomStream& random,
                                 const Metric& metric)
    : N_(N),
      dims_(dims),
      metric_(metric),
      draws_(NeighbourIndex::drawCount(N)) {
    std::generate(draws_.begin(), draws_.end(), [&random] { return random.next(); });
}

std::size_t NeighbourSearch::workerCount() const {
    return static_cast<std::size_t>(worker_count(N_));
}

const NeighbourIndex& NeighbourSearch::index(const double* points) {
    if (index_ == nullptr) {
        RepeatedStream stream(draws_);
        index_ = std::make_unique<NeighbourIndex>(points, N_, dims_, metric_, stream);
    }
    return *index_;
}

void NeighbourSearch::findAll(const double* points,
                              std::size_t count,
                              const Visit& visit,
                              const NeighbourSearchManner& manner) {
    recall_.reset();
    if (manner.is_approximate && can_be_approximate(points, N_, dims_, count, metric_)) {
        findApproximately(points, count, visit, manner.on_stage);
        return;
    }
    StageCount progress(manner.on_stage, Stage::Neighbours, N_);
    std::vector<char> is_found(N_);
    const Visit in_order = visitInOrder(visit, manner.ties);
    findCertain(points, count, is_found, in_order, manner.ties, progress);
    findByTree(points, count, is_found, in_order, manner.ties, progress);
}

/// What visits rows with their neighbours in the order of ties.
NeighbourSearch::Visit NeighbourSearch::visitInOrder(const Visit& visit, NeighbourTies ties) const {
    if (ties == NeighbourTies::OfTree) {
        return visit;
    }
    return [&visit, lists = std::vector<std::vector<NearRow>>(workerCount())](
               std::size_t row, std::span<const NearRow> nearest, std::size_t worker) mutable {
        lists[worker].assign(nearest.begin(), nearest.end());
        order_by_row(static_cast<std::uint32_t>(row), lists[worker]);
        visit(row, lists[worker], worker);
    };
}

void NeighbourSearch::findApproximately(const double* points,
                                        std::size_t count,
                                        const Visit& visit,
                                        const OnStage& on_stage) {
    std::vector<std::vector<NearRow>> nearest(workerCount());
    recall_ = find_approximately(
        points,
        N_,
        dims_,
        count - 1,
        metric_,
        on_stage,
        [&](std::size_t row, std::span<const NearRow> neighbours, std::size_t worker) {
            nearest[worker].assign(1, {static_cast<std::uint32_t>(row), 0.0});
            nearest[worker].insert(nearest[worker].end(), neighbours.begin(), neighbours.end());
            visit(row, nearest[worker], worker);
        });
}

/// Visits the rows of which the neighbours are certain without the tree, and marks them as found.
void NeighbourSearch::findCertain(const double* points,
                                  std::size_t count,
                                  std::vector<char>& is_found,
                                  const Visit& visit,
                                  NeighbourTies ties,
                                  StageCount& progress) const {
    const CandidateSearch candidates(points, N_, dims_, count + 1, metric_);
    std::vector<CandidateSearch::Scratch> scratch(workerCount());
    Patience patience;
    const auto search_part = [&](std::size_t part, std::size_t worker) {
        if (patience.isAtAnEnd() || progress.isStopped()) {
            return;
        }
        std::size_t found = 0;
        candidates.search(
            part, scratch[worker], [&](std::size_t row, std::span<const NearRow> nearest) {
                const bool certain = ties == NeighbourTies::ByRow
                                         ? is_certain_by_row(nearest, count)
                                         : is_certain(nearest, count, candidates.margin());
                patience.count(certain);
                if (certain) {
                    visit(row, nearest.first(count), worker);
                    is_found[row] = 1;
                    ++found;
                }
            });
        progress.add(found);
    };
    parallel_tasks(candidates.partCount(), worker_count(N_), search_part);
}

void NeighbourSearch::findOthers(const double* points,
                                 std::size_t count,
                                 const std::vector<char>& is_found,
                                 const Visit& visit,
                                 NeighbourTies ties,
                                 const OnStage& on_stage) {
    StageCount progress(on_stage, Stage::Neighbours, N_);
    progress.add(static_cast<std::uint64_t>(std::count(is_found.begin(), is_found.end(), 1)));
    findByTree(points, count, is_found, visitInOrder(visit, ties), ties, progress);
}

void NeighbourSearch::findByTree(const double* points,
                                 std::size_t count,
                                 const std::vector<char>& is_found,
                                 const Visit& visit,
                                 NeighbourTies ties,
                                 StageCount& progress) {
    if (std::find(is_found.begin(), is_found.end(), 0) == is_found.end()) {
        return;
    }
    const NeighbourIndex& tree = index(points);
    // In tree order: near points look at the same blocks.
    std::vector<std::uint32_t> rows;
    for (std::size_t position = 0; position < N_; ++position) {
        if (is_found[tree.rowAt(position)] == 0) {
            rows.push_back(tree.rowAt(position));
        }
    }
    const TreeQueries queries(tree, points, dims_, count, visit, ties);
    std::vector<TreeQueries::Scratch> scratch(workerCount());
    const std::span<const std::uint32_t> all(rows);
    const std::size_t tasks = (rows.size() + kTargetsPerTask - 1) / kTargetsPerTask;
    parallel_tasks(tasks, worker_count(N_), [&](std::size_t task, std::size_t worker) {
        const std::size_t end = std::min((task + 1) * kTargetsPerTask, rows.size());
        for (std::size_t i = task * kTargetsPerTask; i < end && !progress.isStopped();
             i += kTargets) {
            const std::size_t asked = std::min(kTargets, end - i);
            queries.ask(all.subspan(i, asked), worker, scratch[worker]);
            progress.add(asked);
        }
    });
}

void order_by_row(std::uint32_t row, std::vector<NearRow>& nearest) {
    if (nearest.empty()) {
        return;
    }
    std::sort(nearest.begin(), nearest.end(), is_nearer);
    const auto itself = std::find_if(
        nearest.begin(), nearest.end(), [row](const NearRow& one) { return one.row == row; });
    // So many rows equal it that it is not among them.
    const auto place = itself != nearest.end() ? itself : nearest.end() - 1;
    *place = {row, 0.0};
    std::rotate(nearest.begin(), place, place + 1);
}

}  // namespace ovik
