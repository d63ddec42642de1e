#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "stats/kernels/slice_pass.h"
#include "util/malloc_pointer.h"
#include "util/parallel.h"

namespace ovik {

/// Where the rows of a sparse matrix lie that is stored in slices of `kSliceRows` rows.
///
/// Within every window of 4096 rows, rows of like length share a slice, so that little is filled
/// up: the longest come first, rows of one length in their order.
class SliceLayout {
  public:
    static constexpr std::size_t kWindowRows = 4096;
    static_assert(kWindowRows % kSliceRows == 0);

    /// @param lengths  entries of each row; fewer than 2^32 - 1 rows
    /// @throws WorkMemoryError
    explicit SliceLayout(std::span<const std::uint32_t> lengths);

    [[nodiscard]] std::size_t rowCount() const { return N_; }

    [[nodiscard]] std::size_t sliceCount() const { return (N_ + kSliceRows - 1) / kSliceRows; }

    /// Steps of all slices times the rows of a slice.
    [[nodiscard]] std::size_t storedCount() const { return starts_[sliceCount()] * kSliceRows; }

    /// First step of each slice; one more than there are slices.
    [[nodiscard]] const std::size_t* starts() const { return starts_.get(); }

    /// The rows of the slices; `kNoRow` where the last one has fewer than `kSliceRows`.
    [[nodiscard]] const std::uint32_t* rows() const { return rows_.get(); }

    /// How many entries each of them has.
    [[nodiscard]] const std::uint32_t* lengths() const { return lengths_.get(); }

    /// Where in `rows` each row is.
    [[nodiscard]] const std::uint32_t* lanes() const { return lanes_.get(); }

    /// Where the first entry of a lane is stored; the next ones follow in steps of `kSliceRows`.
    [[nodiscard]] std::size_t firstOf(std::size_t lane) const {
        return starts_[lane / kSliceRows] * kSliceRows + lane % kSliceRows;
    }

  private:
    void sortWindow(std::span<const std::uint32_t> lengths, IndexRange rows);

    std::size_t N_;
    MallocArray<std::size_t> starts_;
    MallocArray<std::uint32_t> rows_;
    MallocArray<std::uint32_t> lengths_;
    MallocArray<std::uint32_t> lanes_;
};

}  // namespace ovik
