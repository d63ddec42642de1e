#include "stats/slice_layout.h"

#include <algorithm>
#include <numeric>

#include "util/malloc_array.h"

namespace ovik {

SliceLayout::SliceLayout(std::span<const std::uint32_t> lengths)
    : N_(lengths.size()),
      starts_(malloc_array<std::size_t>(sliceCount() + 1)),
      rows_(malloc_array<std::uint32_t>(sliceCount() * kSliceRows)),
      lengths_(malloc_array<std::uint32_t>(sliceCount() * kSliceRows)),
      lanes_(malloc_array<std::uint32_t>(N_)) {
    require_allocated(starts_, rows_, lengths_, lanes_);
    const std::size_t windows = (N_ + kWindowRows - 1) / kWindowRows;
    parallel_for_each(windows, 1, [&](std::size_t window) {
        sortWindow(lengths, {window * kWindowRows, std::min((window + 1) * kWindowRows, N_)});
    });
    std::fill(rows_.get() + N_, rows_.get() + sliceCount() * kSliceRows, kNoRow);
    std::fill(lengths_.get() + N_, lengths_.get() + sliceCount() * kSliceRows, 0U);
    starts_[0] = 0;
    for (std::size_t slice = 0; slice < sliceCount(); ++slice) {
        starts_[slice + 1] = starts_[slice] + lengths_[slice * kSliceRows];
    }
}

/// Puts the rows of a window into its slices, the longest first.
void SliceLayout::sortWindow(std::span<const std::uint32_t> lengths, IndexRange rows) {
    std::uint32_t* const sorted = rows_.get();
    std::iota(sorted + rows.begin, sorted + rows.end, static_cast<std::uint32_t>(rows.begin));
    std::sort(sorted + rows.begin, sorted + rows.end, [&](std::uint32_t a, std::uint32_t b) {
        return lengths[a] != lengths[b] ? lengths[a] > lengths[b] : a < b;
    });
    for (std::size_t lane = rows.begin; lane < rows.end; ++lane) {
        lengths_[lane] = lengths[sorted[lane]];
        lanes_[sorted[lane]] = static_cast<std::uint32_t>(lane);
    }
}

}  // namespace ovik
