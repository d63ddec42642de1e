#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "neighbours/candidate_block.h"
#include "neighbours/nearest_lists.h"
#include "util/parallel.h"

namespace ovik {

/// Compares rows with one another, and offers to the list of each what may belong into it: products
/// of blocks in single precision leave few, and those are measured. One thread's.
class RowJoin {
  public:
    /// @param points  row-major, with a `packable_extent`
    /// @param scale   `packing_scale` of it
    /// @param lists   of the rows of the matrix
    RowJoin(const double* points,
            std::size_t dims,
            double scale,
            const Metric& metric,
            NearestLists& lists);

    /// Compares all rows with all.
    ///
    /// @param rows  distinct
    void joinAll(std::span<const std::uint32_t> rows);

    /// Compares all rows of `fresh` with all, but those of `known` not with one another.
    ///
    /// @param fresh, known  all distinct
    /// @param centre        `dims` values; near the rows
    void joinFresh(std::span<const std::uint32_t> fresh,
                   std::span<const std::uint32_t> known,
                   const double* centre);

  private:
    void begin();
    void pack(std::span<const std::uint32_t> rows, const double* centre);
    void compare(std::size_t targets, IndexRange sources);
    void admit(std::size_t target, std::uint32_t row);
    void offerCandidates(std::size_t target, std::uint32_t row);

    const double* points_;
    std::size_t dims_;
    double scale_;
    const CandidateKernels& kernels_;
    NearestLists& lists_;
    /// Packed blocks, of which the first `block_count_` are in use, and where their rows begin.
    std::vector<PackedBlock> blocks_;
    std::vector<std::size_t> firsts_;
    std::size_t block_count_ = 0;
    std::vector<std::uint32_t> rows_;
    std::vector<double> centre_;
    CandidateBlock candidates_;
    std::vector<std::uint32_t> offered_;
    NearestLists::Scratch scratch_;
};

}  // namespace ovik
