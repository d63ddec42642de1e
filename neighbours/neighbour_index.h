#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "neighbours/kernels/pivot_bounds.h"
#include "neighbours/metric.h"
#include "neighbours/search_manner.h"
#include "util/random_stream.h"

namespace ovik {

/// A vantage-point tree over the rows of a matrix under any metric with the triangle inequality:
/// `VpTree` in a form for very many queries.
///
/// It draws from its stream as `VpTree` does from `rand`, builds the same tree, and gives the same
/// neighbours in the same order, to the last of those at equal distance. A subtree is a range of
/// positions, and its halves follow from the range, so that there are no nodes; a few levels of the
/// tree at a time, or a small subtree, stand in a block, whose distances from a target are computed
/// together. Blocks that hold nothing near enough, by the distances of their points from a few
/// pivots, are passed over.
class NeighbourIndex {
  public:
    /// A row, and its distance from the target.
    struct Neighbour {
        /// Position in tree order.
        std::uint32_t position;
        double distance;
    };

    /// Queries for a few targets, best near one another. When the first of them comes to a block,
    /// its distances from all targets are computed, and kept for those that come later. Used again,
    /// it does not allocate anew.
    struct Queries {
        /// What decides among equally near rows; the way through the tree is that of `VpTree` where
        /// it does.
        NeighbourTies ties = NeighbourTies::OfTree;
        /// The result for each target: nearest first.
        std::vector<Neighbour> neighbours[kTargets];

      private:
        friend class NeighbourIndex;

        const double* targets[kTargets] = {};
        /// The target whose neighbours are searched for now.
        std::size_t current = 0;
        std::size_t wanted = 0;
        double radius = 0.0;
        double pivot_distances[kPivots] = {};
        /// The largest of the pivot distances.
        double margin = 0.0;
        /// The place of each block's distances, or `kNotMeasured`.
        std::vector<std::uint32_t> places;
        /// The blocks that have been measured, by place.
        std::vector<std::uint32_t> measured;
        /// The distances of the measured blocks, kTargets x kBlockPoints at each place.
        std::vector<double> distances;
    };

    /// Builds the tree, subtrees side by side.
    ///
    /// @param points  row-major, N x dims; copied
    /// @param metric  must outlive the index
    /// @param random  where vantage points are drawn from
    /// @throws std::invalid_argument if the metric is without the triangle inequality
    /// @throws InputError if the metric has a complaint of a row
    /// @complexity O(N log N) distances
    NeighbourIndex(const double* points,
                   std::size_t N,
                   std::size_t dims,
                   const Metric& metric = euclidean_metric(),
                   RandomStream& random = process_random_stream());

    NeighbourIndex(const NeighbourIndex&) = delete;
    NeighbourIndex& operator=(const NeighbourIndex&) = delete;

    /// How many blocks of `kBlockPoints` points the index over N rows takes: what it needs most of
    /// its memory for.
    static std::size_t blockCount(std::size_t N);

    /// How many random numbers the build over N rows draws.
    static std::size_t drawCount(std::size_t N);

    /// The row at a position of the tree order. Near rows often have near positions.
    [[nodiscard]] std::uint32_t rowAt(std::size_t position) const { return items_[position].row; }

    /// Finds the `count` nearest rows of each target, nearest first; all if there are fewer. Rows
    /// at a distance of NaN or infinity are never found. Several threads may ask at once.
    ///
    /// @param targets       pointers to dims values each
    /// @param target_count  1 to kTargets
    void search(const double* const* targets,
                std::size_t target_count,
                std::size_t count,
                Queries& queries) const;

  private:
    /// A row, and its distance from the vantage point that is considered in the build.
    struct Item {
        double distance;
        std::uint32_t row;
    };

    /// Positions `lower` to `upper` - 1; the vantage point is the first.
    struct Range {
        std::size_t lower;
        std::size_t upper;

        [[nodiscard]] std::size_t size() const { return upper - lower; }

        [[nodiscard]] std::size_t median() const { return (lower + upper) / 2; }

        [[nodiscard]] Range left() const { return {lower + 1, median()}; }

        [[nodiscard]] Range right() const { return {median(), upper}; }
    };

    /// Levels of a subtree that stand in the block of its root.
    static int levelsInBlock(std::size_t size);
    /// Lanes of the halves of a range whose vantage point has a lane: by position where the block
    /// holds the whole subtree, else level by level.
    static std::size_t leftLane(int levels, std::size_t lane);
    static std::size_t rightLane(Range range, int levels, std::size_t lane);

    void drawVantagePoints(Range range, RandomStream& random);
    void split(const double* points, Range range);
    void buildSubtree(const double* points, Range range);
    void numberBlocks(Range range, int levels);
    void fillBlocks(const double* points, Range range, int levels, double* block, std::size_t lane);
    void choosePivots(const double* points);
    void fillBounds(const double* distances, Range range, int levels);
    void searchCurrent(Queries& queries) const;
    std::size_t measure(std::uint32_t block, Queries& queries) const;
    void visit(
        Range range, int levels, std::size_t place, std::size_t lane, Queries& queries) const;

    [[nodiscard]] auto comesBefore(NeighbourTies ties) const;
    static bool admitsNothing(const Queries& queries);
    static double reachOf(const Queries& queries, double size);
    void offer(const Neighbour& neighbour, Queries& queries) const;

    [[nodiscard]] double distanceOf(const double* a, const double* b) const {
        return metric_.distance(a, b, dims_);
    }

    const Metric& metric_;
    std::size_t dims_;
    std::vector<Item> items_;
    /// What was drawn for the vantage point at each position, and once the subtree is built, the
    /// median distance of the points below it.
    std::vector<double> thresholds_;
    /// The number of the block whose root stands at a position.
    std::vector<std::uint32_t> blocks_;
    std::uint32_t block_count_ = 0;
    /// Holds the blocks, each dims x kBlockPoints.
    std::vector<double> coordinates_;
    double* first_block_ = nullptr;
    /// Pivots, kPivots x dims, and for each block the bounds that `PivotKernels` take, over all
    /// points from the block's root downwards.
    std::vector<double> pivots_;
    std::vector<double> bounds_;
    BlockDistances block_distances_;
    const PivotKernels& pivot_kernels_;
};

}  // namespace ovik
