#include "neighbours/projection_trees.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "util/instruction_set.h"
#include "util/mixed_bits.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Ranges of rows that a task each splits to the end: enough of them for a dynamic schedule.
constexpr std::size_t kTasks = 64;

/// Fewest distances for which another thread pays.
constexpr std::size_t kDistanceGrain = 2048;

class Tree {
  public:
    Tree(const double* points,
         std::size_t N,
         std::size_t dims,
         const Metric& metric,
         std::uint64_t number,
         std::size_t most_rows)
        : points_(points),
          dims_(dims),
          row_distances_(metric.kernels(instruction_set()).row_distances),
          number_(number),
          most_rows_(most_rows),
          order_(N),
          distances_(N),
          sides_(N) {
        std::iota(order_.begin(), order_.end(), 0U);
    }

    void visitLeaves(const VisitLeaf& visit) {
        // Large ranges one after the other, each by all threads; from then on each by one.
        const std::size_t task_size = std::max(most_rows_, order_.size() / kTasks);
        std::vector<IndexRange> ranges;
        std::vector<IndexRange> large{{0, order_.size()}};
        while (!large.empty()) {
            const IndexRange range = large.back();
            large.pop_back();
            if (range.size() <= task_size) {
                ranges.push_back(range);
                continue;
            }
            const std::size_t middle = split(range);
            large.push_back({middle, range.end});
            large.push_back({range.begin, middle});
        }
        parallel_tasks(
            ranges.size(),
            worker_count(order_.size(), kDistanceGrain),
            [&](std::size_t i, std::size_t worker) { splitToEnd(ranges[i], visit, worker); });
    }

  private:
    /// A row and where it is between two others: the nearer to the first, the less.
    struct Side {
        double key;
        std::uint32_t row;

        bool operator<(const Side& other) const {
            return key != other.key ? key < other.key : row < other.row;
        }
    };

    void splitToEnd(IndexRange range, const VisitLeaf& visit, std::size_t worker) {
        if (range.size() <= most_rows_) {
            visit(std::span(order_).subspan(range.begin, range.size()), worker);
            return;
        }
        const std::size_t middle = split(range);
        splitToEnd({range.begin, middle}, visit, worker);
        splitToEnd({middle, range.end}, visit, worker);
    }

    /// The row of a range that a draw falls on. It depends on the set of rows, not on their order.
    [[nodiscard]] std::uint32_t drawn(IndexRange range, std::uint64_t draw) const {
        std::uint32_t row = order_[range.begin];
        std::uint64_t least = ~std::uint64_t{0};
        for (std::size_t i = range.begin; i < range.end; ++i) {
            const std::uint64_t bits = mixed_bits(draw ^ order_[i]);
            if (bits < least) {
                least = bits;
                row = order_[i];
            }
        }
        return row;
    }

    void measure(std::uint32_t target, IndexRange range) {
        parallel_for(range.size(), kDistanceGrain, [&](std::size_t /*worker*/, IndexRange part) {
            const std::size_t first = range.begin + part.begin;
            row_distances_(points_,
                           dims_,
                           points_ + target * dims_,
                           order_.data() + first,
                           part.size(),
                           distances_.data() + first);
        });
    }

    /// Halves a range.
    ///
    /// @return where the second half begins
    std::size_t split(IndexRange range) {
        const std::uint64_t draw =
            mixed_bits(number_ ^ mixed_bits(range.begin ^ (range.end << 32U)));
        measure(drawn(range, draw), range);
        for (std::size_t i = range.begin; i < range.end; ++i) {
            sides_[i] = {distances_[i] * distances_[i], order_[i]};
        }
        measure(drawn(range, mixed_bits(draw)), range);
        for (std::size_t i = range.begin; i < range.end; ++i) {
            sides_[i].key -= distances_[i] * distances_[i];
        }
        const auto begin = sides_.begin() + static_cast<std::ptrdiff_t>(range.begin);
        const auto middle = begin + static_cast<std::ptrdiff_t>(range.size() / 2);
        const auto end = sides_.begin() + static_cast<std::ptrdiff_t>(range.end);
        std::nth_element(begin, middle, end);
        for (std::size_t i = range.begin; i < range.end; ++i) {
            order_[i] = sides_[i].row;
        }
        return static_cast<std::size_t>(middle - sides_.begin());
    }

    const double* points_;
    std::size_t dims_;
    RowDistances row_distances_;
    std::uint64_t number_;
    std::size_t most_rows_;
    std::vector<std::uint32_t> order_;
    /// Scratch of the splits, by position.
    std::vector<double> distances_;
    std::vector<Side> sides_;
};

}  // namespace

void visit_projection_tree(const double* points,
                           std::size_t N,
                           std::size_t dims,
                           const Metric& metric,
                           std::uint64_t tree,
                           std::size_t most_rows,
                           const VisitLeaf& visit) {
    Tree(points, N, dims, metric, mixed_bits(tree), most_rows).visitLeaves(visit);
}

}  // namespace ovik
