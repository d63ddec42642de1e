#include "neighbours/kernels/tree_walk.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// Vectors of points that walk together. A cell is loaded, and the way on decided, once for all.
constexpr std::size_t kVectors = kLanes == 1 ? 1 : 2;
constexpr std::size_t kBatch = kVectors * kLanes;

/// Points that walk the tree together. A lane that has taken a cell as one point waits until the
/// walk comes to the cell behind it, so that every lane takes the cells that it would take alone,
/// in the same order.
template <std::size_t Dims>
class Batch {
  public:
    Batch(const TreeView& tree, std::size_t begin, std::size_t end)
        : begin_(static_cast<std::uint32_t>(begin)),
          end_(static_cast<std::uint32_t>(end)) {
        double own[Dims][kBatch] = {};
        std::int64_t resume[kBatch];
        for (std::size_t lane = 0; lane < kBatch; ++lane) {
            const bool in_use = begin + lane < end;
            // A lane without a point waits for good.
            resume[lane] = in_use ? 0 : static_cast<std::int64_t>(tree.cell_count);
            for (std::size_t d = 0; in_use && d < Dims; ++d) {
                own[d][lane] = tree.data[tree.order[begin + lane] * Dims + d];
            }
        }
        for (std::size_t v = 0; v < kVectors; ++v) {
            resume_[v] = load_integers(resume + v * kLanes);
            share_[v] = broadcast(0.0);
            for (std::size_t d = 0; d < Dims; ++d) {
                own_[v][d] = load(own[d] + v * kLanes);
                force_[v][d] = broadcast(0.0);
            }
        }
    }

    void walk(const TreeView& tree, double squared_theta) {
        const Lanes theta2 = broadcast(squared_theta);
        for (std::size_t i = 0; i < tree.cell_count;) {
            i += visit(tree, i, theta2) ? 1 : tree.cells[i].skip;
        }
    }

    void deliver(const TreeView& tree, double* neg_f, double* shares) const {
        double share[kBatch];
        double force[Dims][kBatch];
        for (std::size_t v = 0; v < kVectors; ++v) {
            store(share + v * kLanes, share_[v]);
            for (std::size_t d = 0; d < Dims; ++d) {
                store(force[d] + v * kLanes, force_[v][d]);
            }
        }
        for (std::size_t lane = 0; begin_ + lane < end_ && lane < kBatch; ++lane) {
            const std::size_t point = tree.order[begin_ + lane];
            shares[point] = share[lane];
            for (std::size_t d = 0; d < Dims; ++d) {
                neg_f[point * Dims + d] = force[d][lane];
            }
        }
    }

  private:
    /// Lets all lanes that do not wait look at a cell.
    ///
    /// @return whether one of them opens it
    bool visit(const TreeView& tree, std::size_t i, Lanes theta2) {
        const TreeCell& cell = tree.cells[i];
        const double* const centre = tree.centres + i * Dims;
        const auto here = static_cast<std::int64_t>(i);
        bool is_opened = false;
        for (std::size_t v = 0; v < kVectors; ++v) {
            Lanes offset[Dims];
            const Lanes squared_distance = offsets(v, centre, offset);
            Lanes weight = broadcast(cell.weight);
            const Mask passes = cell.skip == 1 ? passesLeaf(v, cell, weight)
                                               : passesCell(v, cell, theta2, squared_distance);
            const Mask waits = greater(resume_[v], broadcast_integer(here));
            const Mask taken = but_not(passes, waits);
            is_opened = is_opened || any(but_not(but_not(all(), passes), waits));
            if (any(taken)) {
                take(v, taken, weight, squared_distance, offset);
                resume_[v] = select(taken, broadcast_integer(here + cell.skip), resume_[v]);
            }
        }
        // A leaf has nothing to open: a lane that does not take it goes on behind it.
        return is_opened && cell.skip != 1;
    }

    /// Which lanes take a cell with children as one point.
    [[nodiscard]] Mask passesCell(std::size_t v,
                                  const TreeCell& cell,
                                  Lanes theta2,
                                  Lanes squared_distance) const {
        const Mask far = less(broadcast(cell.squared_side), multiply(theta2, squared_distance));
        return holdsAny(cell) ? but_not(far, holding(v, cell)) : far;
    }

    /// Which lanes take a leaf, and how many points it is for them: all but the lane's own.
    Mask passesLeaf(std::size_t v, const TreeCell& cell, Lanes& weight) const {
        if (!holdsAny(cell)) {
            return all();
        }
        const Mask holds = holding(v, cell);
        weight = add_where(holds, weight, broadcast(-1.0));
        return cell.weight == 1.0 ? but_not(all(), holds) : all();
    }

    static std::uint32_t endOf(const TreeCell& cell) {
        return cell.first + static_cast<std::uint32_t>(cell.weight);
    }

    [[nodiscard]] bool holdsAny(const TreeCell& cell) const {
        return cell.first < end_ && endOf(cell) > begin_;
    }

    /// Writes the offsets of the points from a centre.
    ///
    /// @return the squared distances
    Lanes offsets(std::size_t v, const double* centre, Lanes* offset) const {
        Lanes squared_distance = broadcast(0.0);
        for (std::size_t d = 0; d < Dims; ++d) {
            offset[d] = subtract(own_[v][d], broadcast(centre[d]));
            const Lanes square = multiply(offset[d], offset[d]);
            squared_distance = d == 0 ? square : add(squared_distance, square);
        }
        return squared_distance;
    }

    /// Which lanes stand for points of a cell.
    [[nodiscard]] Mask holding(std::size_t v, const TreeCell& cell) const {
        std::int64_t positions[kLanes];
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            positions[lane] = begin_ + static_cast<std::int64_t>(v * kLanes + lane);
        }
        const Integers position = load_integers(positions);
        return both(greater(position, broadcast_integer(std::int64_t{cell.first} - 1)),
                    greater(broadcast_integer(endOf(cell)), position));
    }

    void take(
        std::size_t v, Mask taken, Lanes weight, Lanes squared_distance, const Lanes* offset) {
        const Lanes one = broadcast(1.0);
        const Lanes q = divide(one, add(one, squared_distance));
        const Lanes weighted = multiply(weight, q);
        share_[v] = add_where(taken, share_[v], weighted);
        const Lanes factor = multiply(weighted, q);
        for (std::size_t d = 0; d < Dims; ++d) {
            force_[v][d] = add_where(taken, force_[v][d], multiply(factor, offset[d]));
        }
    }

    std::uint32_t begin_;
    std::uint32_t end_;
    Lanes own_[kVectors][Dims]{};
    Lanes force_[kVectors][Dims]{};
    Lanes share_[kVectors]{};
    /// The cell at which each lane goes on.
    Integers resume_[kVectors]{};
};

}  // namespace

template <std::size_t Dims>
void walk_tree(const TreeView& tree,
               double squared_theta,
               std::size_t begin,
               std::size_t end,
               double* neg_f,
               double* shares) {
    for (std::size_t first = begin; first < end; first += kBatch) {
        const std::size_t last = first + kBatch < end ? first + kBatch : end;
        Batch<Dims> batch(tree, first, last);
        batch.walk(tree, squared_theta);
        batch.deliver(tree, neg_f, shares);
    }
}

template void walk_tree<2>(const TreeView&, double, std::size_t, std::size_t, double*, double*);
template void walk_tree<3>(const TreeView&, double, std::size_t, std::size_t, double*, double*);

}  // namespace ovik::OVIK_KERNELS
