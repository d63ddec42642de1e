#pragma once

#include "stats/kernels/pair_points.h"
#include "util/kernels/binary_logarithm.h"
#include "util/kernels/division.h"
#include "util/kernels/transpose.h"

namespace ovik::OVIK_KERNELS {

/// Points that are treated side by side: as many as there are lanes.
struct PointGroup {
    std::size_t first;
    /// Those of them that are points, and not padding.
    std::size_t count;
};

inline PointGroup point_group(const EmbeddingColumns& Y, std::size_t first) {
    const std::size_t rest = Y.point_count - first;
    return {first, rest < kLanes ? rest : kLanes};
}

/// The group's place in an array that is stored by panels, each of `size` times its width.
inline std::size_t place_in_panels(const PointGroup& group, std::size_t size) {
    return group.first / kPanelWidth * kPanelWidth * size + group.first % kPanelWidth;
}

/// The forces on a group of points while they are added up.
template <std::size_t Dims>
class GroupForces {
  public:
    GroupForces(const Points<Dims>& Y, const PointGroup& group, double* forces)
        : Y_(Y),
          first_(group.first),
          memory_(forces + place_in_panels(group, Y.dims())),
          forces_{} {
        for (std::size_t d = 0; d < Dims; ++d) {
            forces_[d] = load(memory_ + d * kPanelWidth);
        }
    }

    /// Adds what point m does to each point of the group.
    void add(std::size_t m, Lanes multiplier) {
        if constexpr (Dims > 0) {
            for (std::size_t d = 0; d < Dims; ++d) {
                forces_[d] += Y_.offset(d, first_, m) * multiplier;
            }
        } else {
            for (std::size_t d = 0; d < Y_.dims(); ++d) {
                double* const force = memory_ + d * kPanelWidth;
                store(force, load(force) + Y_.offset(d, first_, m) * multiplier);
            }
        }
    }

    void finish() {
        for (std::size_t d = 0; d < Dims; ++d) {
            store(memory_ + d * kPanelWidth, forces_[d]);
        }
    }

  private:
    const Points<Dims>& Y_;
    std::size_t first_;
    double* memory_;
    Lanes forces_[Dims == 0 ? 1 : Dims];
};

/// The forces of the pairs of a block, each pair computed once for both of its points.
template <std::size_t Dims>
class BlockForces {
  public:
    BlockForces(const EmbeddingColumns& Y, const ForceTask& task)
        : embedding_(Y),
          Y_(Y),
          task_(task),
          normalise_(task.sum_Q) {}

    /// Adds the forces between the points of a group and those of later groups up to `end`.
    void addRow(const PointGroup& rows, std::size_t begin, std::size_t end) const {
        GroupForces<Dims> forces(Y_, rows, task_.forces);
        const double* const P = task_.P + place_in_panels(rows, embedding_.point_count);
        std::size_t first = begin;
        if (first <= rows.first) {
            addOwn(rows, P, forces);
            first = rows.first + kLanes;
        }
        for (; first + kLanes <= end; first += kLanes) {
            addTile(rows, P, forces, {first, kLanes});
        }
        if (first < end) {
            addTile(rows, P, forces, {first, end - first});
        }
        forces.finish();
    }

  private:
    /// The pairs within a group come in both orders. The force of a point on itself is zero, and so
    /// no exception is made.
    void addOwn(const PointGroup& rows, const double* P, GroupForces<Dims>& forces) const {
        for (std::size_t m = rows.first; m < rows.first + rows.count; ++m) {
            forces.add(m, multiplier(rows, P, m));
        }
    }

    void addTile(const PointGroup& rows,
                 const double* P,
                 GroupForces<Dims>& forces,
                 const PointGroup& columns) const {
        Lanes multipliers[kLanes] = {};
        for (std::size_t i = 0; i < columns.count; ++i) {
            const std::size_t m = columns.first + i;
            multipliers[i] = multiplier(rows, P, m);
            forces.add(m, multipliers[i]);
        }
        transpose(multipliers);
        GroupForces<Dims> column_forces(Y_, columns, task_.forces);
        for (std::size_t i = 0; i < kLanes; ++i) {
            column_forces.add(rows.first + i, multipliers[i]);
        }
        column_forces.finish();
    }

    /// What the offsets of the rows from point m are multiplied by.
    [[nodiscard]] Lanes multiplier(const PointGroup& rows, const double* P, std::size_t m) const {
        // Processors do not look ahead beyond a page of memory.
        constexpr std::size_t kPage = 4096;
        prefetch(P + m * kPanelWidth, kPage);
        const Lanes p = load(P + m * kPanelWidth);
        const Lanes q = reciprocal(Y_.reciprocalSimilarity(rows.first, m));
        return q * (p - normalise_(q));
    }

    EmbeddingColumns embedding_;
    Points<Dims> Y_;
    ForceTask task_;
    Divisor normalise_;
};

template <std::size_t Dims>
void add_forces(const EmbeddingColumns& Y, const PairBlock& block, const ForceTask& task) {
    const BlockForces<Dims> forces(Y, task);
    const std::size_t end = block.end_column < Y.point_count ? block.end_column : Y.point_count;
    for (std::size_t first = block.first_row; first < block.end_row && first < end;
         first += kLanes) {
        forces.addRow(point_group(Y, first), block.first_column, end);
    }
}

}  // namespace ovik::OVIK_KERNELS
