#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "neighbours/kernels/candidate_kernels.h"
#include "neighbours/metric.h"
#include "neighbours/near_row.h"
#include "neighbours/row_blocks.h"

namespace ovik {

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

    /// What one thread needs to search for the rows of block after block.
    class Scratch {
        friend class CandidateSearch;

        std::vector<float> packed_targets;
        std::vector<float> packed_sources;
        std::vector<float> starts;
        std::vector<double> target_norms;
        std::vector<double> source_norms;
        std::vector<float> values;
        std::vector<std::uint32_t> positions;
        std::vector<Candidates> candidates;
        /// For each target, above the square of the scaled distance of the last that is wanted.
        std::vector<double> bounds;
        /// All blocks, the nearest first.
        std::vector<NearBlock> blocks;
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

    /// How many blocks there are to search for; none if this search cannot be made: under a metric
    /// without kernels for it, with fewer rows than are wanted, or with values so large, so small
    /// or so many that the bounds of error would not hold.
    [[nodiscard]] std::size_t blockCount() const {
        return blocks_.has_value() ? blocks_->blocks().size() : 0;
    }

    /// Distances that differ by less may be told apart by one search and not by another: far above
    /// what rounding adds to distances and to the bounds of a search.
    [[nodiscard]] double margin() const { return margin_; }

    /// Runs `visit(row, nearest)` for the rows of a block, `nearest` being a span of `wanted` rows
    /// or more, nearest first; of none, if so many are so near to equally far away that single
    /// precision does not tell them apart. Several threads may search at once.
    template <typename Visit>
    void search(std::size_t block, Scratch& scratch, const Visit& visit) const {
        const RowBlocks::Block& targets = blocks_->blocks()[block];
        collect(block, scratch);
        for (std::size_t i = 0; i < targets.count; ++i) {
            const std::uint32_t row = blocks_->order()[targets.first + i];
            measure(row, scratch.candidates[i], scratch);
            visit(std::size_t{row}, std::span<const NearRow>(scratch.nearest));
        }
    }

  private:
    void collect(std::size_t block, Scratch& scratch) const;
    void begin(const RowBlocks::Block& targets, const Frame& frame, Scratch& scratch) const;
    void orderBlocks(std::size_t block, Scratch& scratch) const;
    void offer(const RowBlocks::Block& targets,
               const RowBlocks::Block& sources,
               const Frame& frame,
               Scratch& scratch) const;
    void tighten(std::size_t target, Scratch& scratch) const;
    void measure(std::uint32_t row, const Candidates& candidates, Scratch& scratch) const;

    const double* points_;
    std::size_t dims_;
    std::size_t wanted_;
    double margin_ = 0.0;
    double scale_ = 1.0;
    /// Share of the squared norms of two packed rows by which the square of their distance may
    /// differ from what the kernels compute.
    double error_share_;
    RowDistances row_distances_ = nullptr;
    const CandidateKernels* kernels_ = nullptr;
    std::optional<RowBlocks> blocks_;
};

/// Whether the vantage-point tree, asked for `count` rows, is certain to give the first of a list
/// in its order: whether rounding cannot make it pass one of them over, and none are at equal
/// distance, so that nothing depends on the way of its search.
///
/// @param nearest  the nearest rows, by distance; no row that is left out is nearer than the last
/// @param margin  that of the search
bool is_certain(std::span<const NearRow> nearest, std::size_t count, double margin);

}  // namespace ovik
