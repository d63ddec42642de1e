#include "neighbours/kernels/tree_walk.h"

#include "util/kernels/division.h"
#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// Vectors of points that walk together. A cell is loaded, and the way on decided, once for all.
constexpr std::size_t kVectors = kWalkBatch / kLanes;

/// Bit `lane` tells of that point of a batch.
using BatchMask = unsigned int;

/// Points that walk the tree together. Every lane takes the cells that it would take alone, in the
/// same order; it sleeps while others are within a cell that it has taken as one point.
///
/// All lanes compute for every cell, and there are no branches but rare ones: a processor that
/// guesses wrong at a branch loses more time than lanes cost that compute in vain.
template <std::size_t Dims>
class Batch {
  public:
    /// Sets out for the points at `begin` to `end` - 1 in Morton order.
    void start(
        const TreeView& tree, std::size_t begin, std::size_t end, double* neg_f, double* shares) {
        begin_ = static_cast<std::uint32_t>(begin);
        end_ = static_cast<std::uint32_t>(end);
        next_ = 0;
        double own[Dims][kWalkBatch] = {};
        for (std::size_t lane = 0; lane < end - begin; ++lane) {
            const std::size_t point = tree.order[begin + lane];
            for (std::size_t d = 0; d < Dims; ++d) {
                own[d][lane] = tree.data[point * Dims + d];
            }
            // Near points need not be near in memory: another processor may have written beside
            // them.
            prefetch_to_write(neg_f + point * Dims);
            prefetch_to_write(shares + point);
        }
        for (std::size_t v = 0; v < kVectors; ++v) {
            share_[v] = Lanes{};
            for (std::size_t d = 0; d < Dims; ++d) {
                own_[v][d] = load(own[d] + v * kLanes);
                force_[v][d] = Lanes{};
            }
        }
        opened_[kAboveRoot] = lanesBefore(end_);
    }

    [[nodiscard]] bool isWalking(const TreeView& tree) const { return next_ < tree.cell_count; }

    /// Comes to the next cell.
    ///
    /// @tparam Turn  of batches that walk in turns, the number of this one
    template <std::size_t Turn>
    void visit(const TreeView& tree) {
        const TreeCell& cell = tree.cells[next_];
        const double* const centre = tree.centres + next_ * Dims;
        // The next cell may be that behind this one.
        prefetch(&cell.squared_reach, cell.skip * sizeof(TreeCell));
        prefetch(centre, cell.skip * Dims * sizeof(double));
        const Lanes weight = broadcast(cell.weight);
        Lanes offset[kVectors][Dims];
        Lanes squared_distance[kVectors];
        BatchMask far = 0;
        for (std::size_t v = 0; v < kVectors; ++v) {
            squared_distance[v] = offsets(v, centre, offset[v]);
            far |= less(broadcast(cell.squared_reach), squared_distance[v]) << v * kLanes;
        }
        const BatchMask awake = opened_[cell.parent];
        BatchMask taken = awake & far;
        if (cell.first < end_ && cell.last > begin_) [[unlikely]] {
            const BatchMask holding = lanesBefore(cell.last) & ~lanesBefore(cell.first);
            taken &= ~holding;
            takeOthersOfLeaf(cell, centre, awake & holding);
        }
        for (std::size_t v = 0; v < kVectors; ++v) {
            const Lanes w = 1.0 + squared_distance[v];
            // As many as keep the unit that divides at work: it takes longer than the others.
            const Lanes q = v % 2 == 0 || Turn == 0 ? 1.0 / w : reciprocal(w);
            add(v, taken >> v * kLanes, weight, q, offset[v]);
        }
        const BatchMask opening = awake & ~taken;
        opened_[cell.rank] = opening;
        // To the next cell if a lane opens this one, else to the one behind. A leaf has nothing to
        // open: there they are the same.
        const std::uint32_t is_over = opening == 0 ? ~0U : 0U;
        next_ += 1 + ((cell.skip - 1) & is_over);
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
        for (std::size_t lane = 0; lane < end_ - begin_; ++lane) {
            const std::size_t point = tree.order[begin_ + lane];
            shares[point] = share[lane];
            for (std::size_t d = 0; d < Dims; ++d) {
                neg_f[point * Dims + d] = force[d][lane];
            }
        }
    }

  private:
    /// Adds, for points of a leaf that they share with others, those others.
    void takeOthersOfLeaf(const TreeCell& cell, const double* centre, BatchMask holding) {
        if (cell.skip != 1 || cell.last - cell.first == 1) {
            return;
        }
        const Lanes others = broadcast(cell.weight - 1.0);
        for (std::size_t v = 0; v < kVectors; ++v) {
            Lanes offset[Dims];
            const Lanes w = 1.0 + offsets(v, centre, offset);
            add(v, holding >> v * kLanes, others, 1.0 / w, offset);
        }
    }

    void add(std::size_t v, Mask lanes, Lanes weight, Lanes q, const Lanes* offset) {
        // The other lanes add a zero, which leaves their sums as they are: those begin with +0 and
        // never become -0.
        const Lanes weighted = keep(lanes, weight * q);
        share_[v] += weighted;
        const Lanes factor = weighted * q;
        for (std::size_t d = 0; d < Dims; ++d) {
            force_[v][d] += factor * offset[d];
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

    /// Marks the lanes that stand for points before a position.
    [[nodiscard]] BatchMask lanesBefore(std::uint32_t position) const {
        const std::uint32_t within = position < begin_ ? begin_ : position < end_ ? position : end_;
        return (1U << (within - begin_)) - 1U;
    }

    std::uint32_t begin_ = 0;
    std::uint32_t end_ = 0;
    std::uint32_t next_ = 0;
    Lanes own_[kVectors][Dims]{};
    Lanes force_[kVectors][Dims]{};
    Lanes share_[kVectors]{};
    /// The lanes that opened the cell around the next one, by its rank.
    BatchMask opened_[kRanks]{};
};

template <std::size_t Dims>
void walk_tree(
    const TreeView& tree, std::size_t begin, std::size_t end, double* neg_f, double* shares) {
    // Two batches in turns: what one does next depends on a comparison that takes its time, in
    // which the other goes on.
    Batch<Dims> batches[2];
    bool is_out[2] = {};
    const auto set_out = [&](std::size_t i) {
        is_out[i] = begin < end;
        if (is_out[i]) {
            const std::size_t last = begin + kWalkBatch < end ? begin + kWalkBatch : end;
            batches[i].start(tree, begin, last, neg_f, shares);
            begin = last;
        }
    };
    const auto come_home = [&](std::size_t i) {
        if (is_out[i] && !batches[i].isWalking(tree)) {
            batches[i].deliver(tree, neg_f, shares);
            set_out(i);
        }
    };
    set_out(0);
    set_out(1);
    while (is_out[0] && is_out[1]) {
        do {
            batches[0].template visit<0>(tree);
            batches[1].template visit<1>(tree);
        } while (batches[0].isWalking(tree) && batches[1].isWalking(tree));
        come_home(0);
        come_home(1);
    }
    for (std::size_t i = 0; i < 2; ++i) {
        if (is_out[i]) {
            while (batches[i].isWalking(tree)) {
                batches[i].template visit<1>(tree);
            }
            batches[i].deliver(tree, neg_f, shares);
        }
    }
}

}  // namespace

extern const WalkKernels kWalkKernels;
const WalkKernels kWalkKernels = {&walk_tree<2>, &walk_tree<3>};

}  // namespace ovik::OVIK_KERNELS
