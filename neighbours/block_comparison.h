#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "neighbours/candidate_block.h"
#include "neighbours/metric.h"
#include "neighbours/row_blocks.h"
#include "util/parallel.h"

namespace ovik {

/// Compares blocks of the rows of a matrix, the targets, with all blocks of the rows of a matrix,
/// the sources, in single precision, with a bound of error: few candidates are left for each
/// target. Blocks too far apart are not compared.
///
/// Neighbouring target blocks form groups, which share the packed form of what they are compared
/// with.
class BlockComparison {
  public:
    /// A block of sources, and the distance of its centre from that of a target block.
    struct NearBlock {
        std::size_t block;
        double distance;
    };

    /// What one thread needs to compare group after group.
    class Scratch {
      public:
        /// The candidates of the targets of a block, from the first of the group on.
        CandidateBlock& candidates(std::size_t block) { return candidates_[block]; }

      private:
        friend class BlockComparison;

        PackedBlock sources_;
        std::vector<PackedBlock> packed_targets_;
        std::vector<CandidateBlock> candidates_;
        /// All blocks, the nearest to the first target block first.
        std::vector<NearBlock> blocks_;
        /// Of all blocks from each target block.
        std::vector<double> block_distances_;
        /// For each target block, at least the distance of the last that is wanted of any row.
        std::vector<double> reaches_;
        std::vector<std::uint32_t> rows_;
    };

    /// @param points  row-major, N x dims; must outlive the comparison
    /// @param wanted  how many nearest sources of each target are to be among its candidates
    /// @param extent  `packable_extent` of targets and sources together
    /// @param metric  must outlive the comparison
    BlockComparison(const double* points,
                    std::size_t N,
                    std::size_t dims,
                    std::size_t wanted,
                    double extent,
                    const Metric& metric);

    /// The blocks of the targets.
    [[nodiscard]] const RowBlocks& blocks() const { return blocks_; }

    /// Ranges of blocks.
    [[nodiscard]] const std::vector<IndexRange>& groups() const { return groups_; }

    /// `tree_margin` of the rows.
    [[nodiscard]] double margin() const { return margin_; }

    /// Finds the candidates of the rows of a group; their positions are those in the blocks of the
    /// sources. Several threads may do so at once.
    ///
    /// @param points    of the sources; with as many columns
    /// @param sources   their blocks
    /// @param begin     is called with a block of the group, counted from its first: may `admit`
    ///                  fewer candidates
    /// @param take_all  as that of `CandidateBlock::offer`, with the block of the target before
    template <typename Begin, typename TakeAll>
    void compare(IndexRange group,
                 const double* points,
                 const RowBlocks& sources,
                 Scratch& scratch,
                 const Begin& begin,
                 const TakeAll& take_all) const {
        pack(group, scratch);
        for (std::size_t i = 0; i < group.size(); ++i) {
            begin(i);
            scratch.reaches_[i] = reachOf(scratch.candidates_[i]);
        }
        orderBlocks(group, sources, scratch);
        for (const NearBlock& near : scratch.blocks_) {
            bool is_packed = false;
            for (std::size_t i = 0; i < group.size(); ++i) {
                if (isTooFar(group, i, near.block, sources, scratch)) {
                    continue;
                }
                if (!is_packed) {
                    packSources(group, points, sources, near.block, scratch);
                    is_packed = true;
                }
                CandidateBlock& candidates = scratch.candidates_[i];
                candidates.offer(scratch.sources_, [&](std::size_t t) { take_all(i, t); });
                scratch.reaches_[i] = reachOf(candidates);
            }
        }
        tighten(group, scratch);
    }

  private:
    [[nodiscard]] double reachOf(const CandidateBlock& candidates) const {
        return std::sqrt(candidates.farthestSquare()) / scale_;
    }

    [[nodiscard]] Frame frameOf(IndexRange group) const {
        return {blocks_.centres() + group.begin * dims_, scale_};
    }

    void formGroups();
    void pack(IndexRange group, Scratch& scratch) const;
    void packSources(IndexRange group,
                     const double* points,
                     const RowBlocks& sources,
                     std::size_t block,
                     Scratch& scratch) const;
    void orderBlocks(IndexRange group, const RowBlocks& sources, Scratch& scratch) const;
    [[nodiscard]] bool isTooFar(IndexRange group,
                                std::size_t target,
                                std::size_t source,
                                const RowBlocks& sources,
                                const Scratch& scratch) const;
    void tighten(IndexRange group, Scratch& scratch) const;

    const double* points_;
    std::size_t dims_;
    std::size_t wanted_;
    double margin_;
    double scale_;
    RowDistances row_distances_;
    const CandidateKernels& kernels_;
    RowBlocks blocks_;
    std::vector<IndexRange> groups_;
};

}  // namespace ovik
