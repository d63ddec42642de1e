#pragma once

#include <array>
#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "neighbours/kernels/grid_keys.h"
#include "neighbours/kernels/tree_walk.h"

namespace ovik {

/// Builds the cells of a space-partitioning tree, again and again over the same number of points;
/// after the first time it does not allocate.
///
/// The points are sorted in Morton order: that of the interleaved bits of their cells on a grid.
/// The split level of two neighbours in that order is the coarsest level of the grid at which they
/// lie in different cells. Split levels alone decide the tree, in one pass from the last point to
/// the first. The subtrees of a few coarse levels are built side by side and then put together; the
/// tree is the same for any number of threads.
class TreeBuilder {
  public:
    TreeBuilder(std::size_t dims, std::size_t point_count);

    /// Begins to build the tree: sorts the points into parts that can be built side by side.
    ///
    /// @param data           row-major, point_count x dims; read until `join` has ended
    /// @param squared_theta  0 or more: a cell is far enough if its squared side is below this
    /// times
    ///                       the squared distance
    /// @return the number of parts
    std::size_t prepare(const double* data, double squared_theta);

    /// Builds one part; other threads may build others.
    void buildPart(std::size_t part);

    /// Puts the parts, and the coarse cells around them, together. After that, the tree is there.
    void join();

    /// The tree that was built last; `data` is null.
    [[nodiscard]] TreeView view() const;

    /// Lists the positions of the points of the tree that is there.
    void rankPoints();

    /// The position of each point in Morton order, as `rankPoints` last listed it.
    [[nodiscard]] const std::uint32_t* rank() const { return rank_.data(); }

  private:
    /// The least and the greatest finite coordinate of points in one dimension; DBL_MAX and
    /// -DBL_MAX if none is.
    struct Bounds {
        double low = DBL_MAX;
        double high = -DBL_MAX;
        /// Whether all of them are finite.
        bool is_finite = true;
    };

    /// Part of the tree: the points of one coarse cell.
    struct Segment {
        std::uint32_t first;
        std::uint32_t last;
        std::size_t cell_count;
        /// Where the cells of the part begin in the whole tree.
        std::size_t place;
        bool is_deep;
    };

    /// For each split level from `kSameCell` on, a squared distance.
    using LevelReaches = std::array<double, 33>;

    /// A grid whose cells are written.
    struct Grid {
        double side;
        /// For each level, `squared_reach` of the cells that are split there.
        const LevelReaches* reaches;
        /// The highest split level of two points that still belong to one unit.
        int within;
        /// The number of grids around it.
        int nesting;
        /// Set where grids are nested too deep for ranks of their own.
        bool* is_deep;
    };

    /// Cells that are written back to front, each behind its children.
    struct CellArray {
        std::vector<TreeCell> cells;
        std::vector<double> centres;
        std::vector<double> squared_sides;
    };

    class Assembler;

    /// The number of grid cells after some levels.
    [[nodiscard]] std::size_t cellsOf(int levels) const {
        return std::size_t{1} << dims_ * static_cast<std::size_t>(levels);
    }

    void layGrid();
    [[nodiscard]] LevelReaches reachesOn(double grid_side) const;
    void fillKeys();
    const std::uint32_t* encode(std::uint32_t row);
    [[nodiscard]] std::uint64_t keyOf(std::uint32_t row);
    void fillBuckets();
    void listSegments();
    void orderPoints(std::uint32_t first, std::uint32_t last);
    std::uint32_t orderPointsOfKey(std::uint32_t first, std::uint32_t last);
    void sortByCode(std::uint32_t first, std::uint32_t last);
    std::size_t emitRange(std::uint32_t first,
                          std::uint32_t last,
                          const Grid& grid,
                          std::size_t end);
    std::size_t emitUnit(std::uint32_t first,
                         std::uint32_t last,
                         const Grid& around,
                         std::size_t end);
    double refineGrid(std::uint32_t first, std::uint32_t last);
    void weigh(CellArray& array, std::size_t cell) const;

    [[nodiscard]] Bounds bounds(std::uint32_t first, std::uint32_t last, std::size_t d) const;
    [[nodiscard]] int highestDifferingBit(std::uint32_t a, std::uint32_t b) const;
    [[nodiscard]] std::int8_t splitLevelOfKeys(const GridKey& a, const GridKey& b) const;
    [[nodiscard]] std::int8_t splitLevelOfRows(std::uint32_t a, std::uint32_t b) const;
    [[nodiscard]] bool precedes(std::uint32_t a, std::uint32_t b) const;
    [[nodiscard]] int comparePlaces(std::uint32_t a, std::uint32_t b) const;

    std::size_t dims_;
    std::size_t point_count_;
    /// Bits of each dimension in a key.
    int key_bits_;
    /// Grid levels that the buckets tell apart, and the segments.
    int bucket_levels_;
    int segment_levels_;
    /// The split level of points whose keys differ in this bit first.
    std::array<std::int8_t, 64> level_of_bit_{};
    const double* data_ = nullptr;
    double squared_theta_ = 0.0;
    double side_ = 0.0;
    LevelReaches reaches_{};
    double reach_ = 0.0;
    bool is_deep_ = false;
    std::vector<double> low_;
    /// Grid cell of each point, N x dims.
    std::vector<std::uint32_t> codes_;
    std::vector<GridKey> unsorted_;
    std::vector<GridKey> keys_;
    std::vector<std::uint32_t> bucket_starts_;
    std::vector<std::uint32_t> order_;
    std::vector<std::uint32_t> rank_;
    /// The split level of the points at i and i + 1 in Morton order, or `kSameCell` or
    /// `kSamePlace`.
    std::vector<std::int8_t> split_levels_;
    std::vector<Segment> segments_;
    /// The cells above the segments, children first.
    std::vector<std::size_t> coarse_cells_;
    /// The segments, each at twice the position of its first point and aligned to its end.
    CellArray parts_;
    /// The tree, from `first_cell_` to the end.
    CellArray whole_;
    std::size_t first_cell_ = 0;
};

}  // namespace ovik
