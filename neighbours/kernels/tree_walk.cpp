#include "neighbours/kernels/tree_walk.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// Vectors of points that walk together. A cell is loaded, and the way on decided, once for all.
constexpr std::size_t kVectors = kWalkBatch / kLanes;

/// Bit `lane` tells of that point of a batch.
using BatchMask = unsigned int;

/// Points that walk the tree together. A lane that has taken a cell as one point sleeps until the
/// walk comes to the cell behind it, so that every lane takes the cells that it would take alone,
/// in the same order.
///
/// What the next step of the walk depends on is kept out of branches: a processor that guesses
/// wrong at one loses more time than lanes cost that compute in vain.
template <std::size_t Dims>
class Batch {
  public:
    Batch(const TreeView& tree, std::size_t begin, std::size_t end)
        : begin_(static_cast<std::uint32_t>(begin)),
          end_(static_cast<std::uint32_t>(end)) {
        for (std::size_t lane = 0; lane < end - begin; ++lane) {
            for (std::size_t d = 0; d < Dims; ++d) {
                own_[lane / kLanes][d][lane % kLanes] =
                    tree.data[tree.order[begin + lane] * Dims + d];
            }
        }
    }

    void walk(const TreeView& tree, double squared_theta) {
        BatchMask awake = lanesBefore(end_);
        // Every sleep leaves fewer lanes awake than the one around it.
        Sleep sleeps[kWalkBatch];
        std::size_t depth = 0;
        for (std::size_t i = 0; i < tree.cell_count;) {
            while (depth > 0 && sleeps[depth - 1].end == i) {
                awake = sleeps[--depth].awake;
            }
            const std::size_t next = i + tree.cells[i].skip;
            const BatchMask opening = awake & ~take(tree, i, awake, squared_theta);
            // A leaf has nothing to open: a lane that does not take it goes on behind it.
            if (opening == 0 || next == i + 1) {
                i = next;
                continue;
            }
            sleeps[depth] = {next, awake};
            depth += opening != awake ? 1 : 0;
            awake = opening;
            ++i;
        }
    }

    void deliver(const TreeView& tree, double* neg_f, double* shares) const {
        double share[kWalkBatch];
        double force[Dims][kWalkBatch];
        for (std::size_t v = 0; v < kVectors; ++v) {
            store(share + v * kLanes, share_[v]);
            for (std::size_t d = 0; d < Dims; ++d) {
                store(force[d] + v * kLanes, force_[v][d]);
            }
        }
        for (std::size_t lane = 0; begin_ + lane < end_ && lane < kWalkBatch; ++lane) {
            const std::size_t point = tree.order[begin_ + lane];
            shares[point] = share[lane];
            for (std::size_t d = 0; d < Dims; ++d) {
                neg_f[point * Dims + d] = force[d][lane];
            }
        }
    }

  private:
    /// Until the cell `end`, lanes sleep that are awake afterwards.
    struct Sleep {
        std::size_t end;
        BatchMask awake;
    };

    /// Lets the lanes that are awake and may take a cell as one point do so.
    ///
    /// @return which lanes took it
    BatchMask take(const TreeView& tree, std::size_t i, BatchMask awake, double squared_theta) {
        const TreeCell& cell = tree.cells[i];
        const bool is_leaf = cell.skip == 1;
        const bool is_shared = is_leaf && cell.weight > 1.0;
        Lanes offset[kVectors][Dims];
        Lanes squared_distance[kVectors];
        BatchMask far = 0;
        for (std::size_t v = 0; v < kVectors; ++v) {
            squared_distance[v] = offsets(v, tree.centres + i * Dims, offset[v]);
            far |= less(broadcast(cell.squared_side), squared_theta * squared_distance[v])
                   << v * kLanes;
        }
        const BatchMask holding = lanesIn(cell);
        const BatchMask taken = awake & (is_leaf ? ~0U : far) & ~(is_shared ? 0U : holding);
        for (std::size_t v = 0; v < kVectors; ++v) {
            Lanes weight = broadcast(cell.weight);
            if (is_shared) {
                // All points of the leaf but the lane's own.
                weight -= keep(holding >> v * kLanes, broadcast(1.0));
            }
            add(v, taken >> v * kLanes, weight, squared_distance[v], offset[v]);
        }
        return taken;
    }

    void add(std::size_t v, Mask taken, Lanes weight, Lanes squared_distance, const Lanes* offset) {
        const Lanes q = 1.0 / (1.0 + squared_distance);
        const Lanes weighted = weight * q;
        share_[v] += keep(taken, weighted);
        const Lanes factor = weighted * q;
        for (std::size_t d = 0; d < Dims; ++d) {
            force_[v][d] += keep(taken, factor * offset[d]);
        }
    }

    /// Writes the offsets of the points from a centre.
    ///
    /// @return the squared distances
    Lanes offsets(std::size_t v, const double* centre, Lanes* offset) const {
        Lanes squared_distance{};
        for (std::size_t d = 0; d < Dims; ++d) {
            offset[d] = own_[v][d] - centre[d];
            const Lanes square = offset[d] * offset[d];
            squared_distance = d == 0 ? square : squared_distance + square;
        }
        return squared_distance;
    }

    /// Marks the lanes that stand for points of a cell.
    [[nodiscard]] BatchMask lanesIn(const TreeCell& cell) const {
        const std::uint32_t end = cell.first + static_cast<std::uint32_t>(cell.weight);
        if (cell.first >= end_ || end <= begin_) [[likely]] {
            return 0;
        }
        return lanesBefore(end) & ~lanesBefore(cell.first);
    }

    /// Marks the lanes that stand for points before a position.
    [[nodiscard]] BatchMask lanesBefore(std::uint32_t position) const {
        const std::uint32_t within = position < begin_ ? begin_ : position < end_ ? position : end_;
        return (1U << (within - begin_)) - 1U;
    }

    std::uint32_t begin_;
    std::uint32_t end_;
    Lanes own_[kVectors][Dims]{};
    Lanes force_[kVectors][Dims]{};
    Lanes share_[kVectors]{};
};

template <std::size_t Dims>
void walk_tree(const TreeView& tree,
               double squared_theta,
               std::size_t begin,
               std::size_t end,
               double* neg_f,
               double* shares) {
    for (std::size_t first = begin; first < end; first += kWalkBatch) {
        const std::size_t last = first + kWalkBatch < end ? first + kWalkBatch : end;
        Batch<Dims> batch(tree, first, last);
        batch.walk(tree, squared_theta);
        batch.deliver(tree, neg_f, shares);
    }
}

}  // namespace

extern const WalkKernels kWalkKernels;
const WalkKernels kWalkKernels = {&walk_tree<2>, &walk_tree<3>};

}  // namespace ovik::OVIK_KERNELS
