#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "neighbours/candidate_block.h"
#include "neighbours/kernels/candidate_kernels.h"
#include "neighbours/metric.h"
#include "neighbours/near_row.h"
#include "neighbours/row_blocks.h"
#include "util/parallel.h"

namespace ovik {

/// At least the longest distance of two rows of a matrix; none where blocks of them cannot be
/// compared in single precision, since the metric has no kernels for it, or values are so large, so
/// small or so many that the bounds of error would not hold.
std::optional<double> packable_extent(const double* points,
                                      std::size_t N,
                                      std::size_t dims,
                                      const Metric& metric);

/// The power of two by which rows of an extent are multiplied when they are packed.
double packing_scale(double extent);

/// Finds the rows nearest to each row of a matrix: blocks of rows are compared in single precision,
/// with a bound of error, which leaves few candidates for each row; these are measured. Blocks too
/// far apart are not compared. Of rows at equal distance any may be found, in any order.
///
/// In many dimensions a tree spares few distances, and the products of two blocks take a small part
/// of the time of as many distances.
class CandidateSearch {
  public:
    /// A block, and the distance of its centre from another's.
    struct NearBlock {
        std::size_t block;
        double distance;
    };

    /// What one thread needs to search for the rows of part after part.
    class Scratch {
        friend class CandidateSearch;

        PackedBlock sources;
        std::vector<PackedBlock> packed_targets;
        std::vector<CandidateBlock> candidates;
        /// All blocks, the nearest to the first target block first.
        std::vector<NearBlock> blocks;
        /// Of all blocks from each target block.
        std::vector<double> block_distances;
        /// For each target block, at least the distance of the last that is wanted of any row.
        std::vector<double> reaches;
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

    /// How many parts the rows are searched for in: neighbouring blocks, which share the packed
    /// form of what they are compared with. None if this search cannot be made: under a metric
    /// without kernels for it, with fewer rows than are wanted, or with values so large, so small
    /// or so many that the bounds of error would not hold.
    [[nodiscard]] std::size_t partCount() const { return parts_.size(); }

    /// The rows of a part.
    [[nodiscard]] std::span<const std::uint32_t> rowsOf(std::size_t part) const {
        const RowBlocks::Block& first = blocks_->blocks()[parts_[part].begin];
        const RowBlocks::Block& last = blocks_->blocks()[parts_[part].end - 1];
        return std::span(blocks_->order())
            .subspan(first.first, last.first + last.count - first.first);
    }

    /// Distances that differ by less may be told apart by one search and not by another: far above
    /// what rounding adds to distances and to the bounds of a search.
    [[nodiscard]] double margin() const { return margin_; }

    /// Runs `visit(row, nearest)` for the rows of a part, `nearest` being a span of `wanted` rows
    /// or more, nearest first; of none, if so many are so near to equally far away that single
    /// precision does not tell them apart. Several threads may search at once.
    template <typename Visit>
    void search(std::size_t part, Scratch& scratch, const Visit& visit) const {
        const IndexRange targets = parts_[part];
        collect(targets, scratch);
        for (std::size_t block = targets.begin; block < targets.end; ++block) {
            CandidateBlock& candidates = scratch.candidates[block - targets.begin];
            const std::span<const std::uint32_t> rows = blocks_->rows(blocks_->blocks()[block]);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                measure(rows[i], candidates.positions(i), scratch);
                visit(std::size_t{rows[i]}, std::span<const NearRow>(scratch.nearest));
            }
        }
    }

  private:
    void formParts();
    void collect(IndexRange targets, Scratch& scratch) const;
    void begin(IndexRange targets, const Frame& frame, Scratch& scratch) const;
    void orderBlocks(IndexRange targets, Scratch& scratch) const;
    void compare(IndexRange targets,
                 const NearBlock& other,
                 const Frame& frame,
                 Scratch& scratch) const;
    void measure(std::uint32_t row,
                 std::span<const std::uint32_t> positions,
                 Scratch& scratch) const;

    const double* points_;
    std::size_t dims_;
    std::size_t wanted_;
    double margin_ = 0.0;
    double scale_ = 1.0;
    RowDistances row_distances_ = nullptr;
    const CandidateKernels* kernels_ = nullptr;
    std::optional<RowBlocks> blocks_;
    /// Ranges of blocks.
    std::vector<IndexRange> parts_;
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
