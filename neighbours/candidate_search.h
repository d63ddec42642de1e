#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "neighbours/block_comparison.h"
#include "neighbours/kernels/candidate_kernels.h"
#include "neighbours/metric.h"
#include "neighbours/near_row.h"

namespace ovik {

/// Finds the rows nearest to each row of a matrix: blocks of rows are compared in single precision,
/// with a bound of error, which leaves few candidates for each row; these are measured. Blocks too
/// far apart are not compared. Of rows at equal distance any may be found, in any order.
///
/// In many dimensions a tree spares few distances, and the products of two blocks take a small part
/// of the time of as many distances.
class CandidateSearch {
  public:
    /// What one thread needs to search for the rows of part after part.
    class Scratch {
        friend class CandidateSearch;

        BlockComparison::Scratch comparison;
        std::vector<double> distances;
        std::vector<std::uint32_t> rows;
        std::vector<std::uint32_t> places;
        std::vector<NearRow> nearest;
    };

    /// @param points  row-major, N x dims; must outlive the search
    /// @param wanted  how many rows are to be found for each, itself among them
    /// @param metric  must outlive the search
    CandidateSearch(const double* points,
                    std::size_t N,
                    std::size_t dims,
                    std::size_t wanted,
                    const Metric& metric = euclidean_metric());

    /// How many parts the rows are searched for in. None if this search cannot be made: under a
    /// metric without kernels for it, with fewer rows than are wanted, or with values so large, so
    /// small or so many that the bounds of error would not hold.
    [[nodiscard]] std::size_t partCount() const {
        return comparison_ ? comparison_->groups().size() : 0;
    }

    /// `tree_margin` of the rows.
    [[nodiscard]] double margin() const { return comparison_->margin(); }

    /// Runs `visit(row, nearest)` for the rows of a part, `nearest` being a span of `wanted` rows
    /// or more, nearest first; of none, if so many are so near to equally far away that single
    /// precision does not tell them apart. Several threads may search at once.
    template <typename Visit>
    void search(std::size_t part, Scratch& scratch, const Visit& visit) const {
        const IndexRange group = comparison_->groups()[part];
        const RowBlocks& blocks = comparison_->blocks();
        BlockComparison::Scratch& compared = scratch.comparison;
        comparison_->compare(
            group,
            points_,
            blocks,
            compared,
            [](std::size_t) {},
            [&](std::size_t block, std::size_t t) { compared.candidates(block).giveUp(t); });
        for (std::size_t block = group.begin; block < group.end; ++block) {
            const CandidateBlock& candidates = compared.candidates(block - group.begin);
            const std::span<const std::uint32_t> rows = blocks.rows(blocks.blocks()[block]);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                measure(rows[i], candidates.positions(i), scratch);
                visit(std::size_t{rows[i]}, std::span<const NearRow>(scratch.nearest));
            }
        }
    }

  private:
    void measure(std::uint32_t row,
                 std::span<const std::uint32_t> positions,
                 Scratch& scratch) const;

    const double* points_;
    std::size_t dims_;
    RowDistances row_distances_ = nullptr;
    const CandidateKernels* kernels_ = nullptr;
    std::optional<BlockComparison> comparison_;
};

/// Whether the vantage-point tree, asked for `count` rows, is certain to give the first of a list
/// in its order: whether rounding cannot make it pass one of them over, and none are at equal
/// distance, so that nothing depends on the way of its search.
///
/// @param nearest  the nearest rows, by distance; no row that is left out is nearer than the last
/// @param margin  that of the search
bool is_certain(std::span<const NearRow> nearest, std::size_t count, double margin);

/// Whether the first of a list are certain to be the nearest, of rows equally near the lower ones:
/// whether the list goes on farther away.
///
/// @param nearest  as above
bool is_certain_by_row(std::span<const NearRow> nearest, std::size_t count);

}  // namespace ovik
