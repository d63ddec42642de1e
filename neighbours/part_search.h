#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "neighbours/block_comparison.h"
#include "neighbours/metric.h"
#include "neighbours/near_row.h"
#include "neighbours/row_blocks.h"
#include "util/matrix_view.h"
#include "util/parallel.h"

namespace ovik {

class StageCount;

/// Finds for the rows of a part of a matrix the nearest others among all rows, while the parts of
/// the matrix come by, itself among them: exactly, of equally near rows the lower ones first. No
/// more of the matrix than two parts is needed at once, and the parts may come in any order.
///
/// Blocks of rows are compared in single precision, as `BlockComparison` does it; what is left is
/// measured.
class PartSearch {
  public:
    /// @param part    must outlive the search
    /// @param first   the number of its first row among all
    /// @param wanted  how many others are wanted of each row
    /// @param extent  `packable_extent` of all rows
    /// @param metric  must outlive the search
    PartSearch(MatrixView<const double> part,
               std::size_t first,
               std::size_t wanted,
               double extent,
               const Metric& metric = euclidean_metric());

    /// Compares the rows with those of a part that comes by.
    ///
    /// @param others    the part itself, or another one
    /// @param first     the number of its first row among all
    /// @param progress  is told of every row that has been compared
    /// @throws what the progress throws
    void visit(MatrixView<const double> others, std::size_t first, StageCount& progress);

    /// The nearest others of a row of the part among all that have come by, nearest first: as many
    /// as are wanted, or all.
    [[nodiscard]] std::span<const NearRow> nearest(std::size_t row) const {
        return {lists_.data() + row * wanted_, counts_[row]};
    }

  private:
    /// A part that comes by.
    struct Visitors {
        MatrixView<const double> rows;
        std::size_t first = 0;
        const RowBlocks& blocks;
    };

    /// What a worker needs.
    struct Scratch {
        BlockComparison::Scratch comparison;
        std::vector<double> distances;
        std::vector<std::uint32_t> rows;
        std::vector<std::uint32_t> places;
        std::vector<NearRow> found;
        std::vector<NearRow> sorted;
        std::vector<NearRow> merged;
    };

    void compare(IndexRange group, const Visitors& visitors, Scratch& scratch);
    void admit(std::uint32_t row, std::size_t target, CandidateBlock& candidates) const;
    void offer(std::uint32_t row,
               std::span<const std::uint32_t> positions,
               const Visitors& visitors,
               Scratch& scratch);
    void sortFound(Scratch& scratch) const;
    void merge(std::uint32_t row, Scratch& scratch);

    MatrixView<const double> part_;
    std::size_t first_;
    std::size_t wanted_;
    double scale_;
    const Metric& metric_;
    RowDistances row_distances_;
    const CandidateKernels& kernels_;
    BlockComparison comparison_;
    /// The nearest of row n of the part stand from n * wanted on.
    std::vector<NearRow> lists_;
    std::vector<std::uint32_t> counts_;
};

}  // namespace ovik
