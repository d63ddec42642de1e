#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "neighbours/kernels/block_distances.h"

namespace ovik {

/// A vantage-point tree over the rows of a matrix under the Euclidean distance: `VpTree` in a form
/// for very many queries.
///
/// It draws from `rand` as `VpTree` does, builds the same tree, and gives the same neighbours in
/// the same order, to the last of those at equal distance. A subtree is a range of positions, and
/// its halves follow from the range, so that there are no nodes; a few levels of the tree at a
/// time, or a small subtree, stand in a block, whose distances from a target are computed together.
/// Blocks that hold nothing near enough, by the distances of their points from a few pivots, are
/// passed over.
class NeighbourIndex {
  public:
    /// A row, and its distance from the target.
    struct Neighbour {
        /// Position in tree order.
        std::uint32_t position;
        double distance;

        bool operator<(const Neighbour& other) const { return distance < other.distance; }
    };

    /// Queries for a few targets, best near one another. When the first of them comes to a block,
    /// its distances from all targets are computed, and kept for those that come later. Used again,
    /// it does not allocate anew.
    struct Queries {
        /// The result for each target: nearest first.
        std::vector<Neighbour> neighbours[kTargets];

      private:
        friend class NeighbourIndex;

        const double* targets[kTargets] = {};
        /// The one that is searched for.
        std::size_t current = 0;
        std::size_t wanted = 0;
        double radius = 0.0;
        double pivot_distances[kPivots] = {};
        /// The largest of them.
        double margin = 0.0;
        /// Of each block: where its distances are kept, or `kNotMeasured`.
        std::vector<std::uint32_t> places;
        /// Blocks that have been measured, by place.
        std::vector<std::uint32_t> measured;
        /// kTargets x kBlockPoints at each place.
        std::vector<double> distances;
    };

    /// Builds the tree, subtrees side by side.
    ///
    /// @param points  row-major, N x dims; copied
    /// @complexity O(N log N) distances
    NeighbourIndex(const double* points, std::size_t N, std::size_t dims);

    NeighbourIndex(const NeighbourIndex&) = delete;
    NeighbourIndex& operator=(const NeighbourIndex&) = delete;

    /// How many blocks of `kBlockPoints` points the index over N rows takes: what it needs most of
    /// its memory for.
    static std::size_t blockCount(std::size_t N);

    /// How many numbers the build drew from `rand`.
    [[nodiscard]] std::size_t drawCount() const { return draw_count_; }

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

    void drawVantagePoints(Range range);
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

    std::size_t dims_;
    std::size_t draw_count_ = 0;
    std::vector<Item> items_;
    /// Of the vantage point at each position: what was drawn for it, then the median distance of
    /// the points below.
    std::vector<double> thresholds_;
    /// Of each position that is the root of a block: the block's number.
    std::vector<std::uint32_t> blocks_;
    std::uint32_t block_count_ = 0;
    /// Holds the blocks, each dims x kBlockPoints.
    std::vector<double> coordinates_;
    double* first_block_ = nullptr;
    /// Pivots, kPivots x dims, and for each block the bounds that `BeyondRadius` takes, over all
    /// points from the block's root downwards.
    std::vector<double> pivots_;
    std::vector<double> bounds_;
    BlockKernels kernels_;
};

}  // namespace ovik
