#pragma once

#include <array>
#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "neighbours/metric.h"
#include "util/parallel.h"

namespace ovik {

/// The rows of a matrix in blocks of rows that are near one another: ranges of rows are halved
/// between two far ones until they are small.
class RowBlocks {
  public:
    /// Most rows of a block.
    static constexpr std::size_t kMostRows = 128;

    /// Some rows: those at positions `first` to `first + count - 1`.
    struct Block {
        std::size_t first;
        std::size_t count;
        /// At least the distance of every row from the centre.
        double radius;
    };

    /// @param points  row-major, N x dims; all distances from the first row are finite
    /// @param metric  with the triangle inequality
    /// @complexity O(N log N) distances
    RowBlocks(const double* points, std::size_t N, std::size_t dims, const Metric& metric);

    [[nodiscard]] const std::vector<Block>& blocks() const { return blocks_; }

    /// The row at each position.
    [[nodiscard]] const std::vector<std::uint32_t>& order() const { return order_; }

    /// The numbers of the rows of a block.
    [[nodiscard]] std::span<const std::uint32_t> rows(const Block& block) const {
        return std::span(order_).subspan(block.first, block.count);
    }

    /// The centres of all blocks, row-major.
    [[nodiscard]] const double* centres() const { return centres_.data(); }

  private:
    /// Groups of the rows of a small range.
    struct Groups {
        Groups() { distances.fill(DBL_MAX); }

        std::size_t count = 0;
        /// The position of the row that is farthest from the middle of its group.
        std::size_t farthest = 0;
        /// For each row its group, and its distance from the middle of that.
        std::array<std::size_t, kMostRows> of_rows{};
        std::array<double, kMostRows> distances{};
    };

    [[nodiscard]] const double* rowAt(std::size_t position) const {
        return points_ + order_[position] * dims_;
    }

    void measure(const double* target, IndexRange range);
    [[nodiscard]] std::size_t farthest(IndexRange range) const;
    double radius(IndexRange range, double* centre);
    void sortSides(IndexRange range);
    void takeSides(IndexRange range);
    std::size_t split(IndexRange range);
    void addGroups(IndexRange range, std::vector<IndexRange>& leaves);
    double addGroup(IndexRange range, Groups& groups);
    void splitToEnd(IndexRange range, std::vector<IndexRange>& leaves);
    void measureBlock(std::size_t number);

    /// A row, and on which side of two far ones it is: the nearer to the first, the less.
    struct Side {
        double key;
        std::uint32_t row;
    };

    const double* points_;
    std::size_t dims_;
    RowDistances row_distances_;
    std::vector<std::uint32_t> order_;
    /// Scratch of the splits, by position.
    std::vector<double> distances_;
    std::vector<Side> sides_;
    std::vector<Block> blocks_;
    std::vector<double> centres_;
};

}  // namespace ovik
