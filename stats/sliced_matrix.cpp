#include "stats/sliced_matrix.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <stdexcept>

#include "stats/elementwise.h"
#include "util/huge_pages.h"
#include "util/malloc_array.h"

namespace ovik {

namespace {

/// Few enough for rows of a slice to be near each other, enough for them to be of like length.
constexpr std::size_t kWindowRows = 4096;
static_assert(kWindowRows % kSliceRows == 0);

/// Fewest slices for which another thread pays.
constexpr std::size_t kSliceGrain = 16;

constexpr std::size_t kCacheLine = 64;

void check_size(std::size_t N, std::size_t dims) {
    constexpr std::size_t kPlaces = std::size_t{std::numeric_limits<std::uint32_t>::max()};
    if (N >= kPlaces || (dims > 0 && N > kPlaces / dims)) {
        throw std::length_error("the embedding has more coordinates than 32 bits can count");
    }
}

}  // namespace

SlicedMatrix::SlicedMatrix(const unsigned int* row_P, std::size_t N, std::size_t dims)
    : N_(N),
      dims_(dims),
      entry_count_(N > 0 ? row_P[N] : 0),
      starts_(malloc_array<std::size_t>(sliceCount() + 1)),
      rows_(malloc_array<std::uint32_t>(sliceCount() * kSliceRows)),
      lengths_(malloc_array<std::uint32_t>(sliceCount() * kSliceRows)),
      lane_of_row_(malloc_array<std::uint32_t>(N)),
      slice_sums_(malloc_array<double>(2 * sliceCount())) {
    require_allocated(starts_, rows_, lengths_, lane_of_row_, slice_sums_);
    check_size(N, dims);
    const std::size_t windows = (N + kWindowRows - 1) / kWindowRows;
    parallel_for_each(windows, 1, [&](std::size_t window) {
        sortWindow(row_P, {window * kWindowRows, std::min((window + 1) * kWindowRows, N)});
    });
    std::fill(rows_.get() + N, rows_.get() + sliceCount() * kSliceRows, kNoRow);
    std::fill(lengths_.get() + N, lengths_.get() + sliceCount() * kSliceRows, 0U);
    starts_[0] = 0;
    for (std::size_t slice = 0; slice < sliceCount(); ++slice) {
        starts_[slice + 1] = starts_[slice] + lengths_[slice * kSliceRows];
    }
}

SlicedMatrix::SlicedMatrix(const SparseMatrixView& P, std::size_t N, std::size_t dims)
    : SlicedMatrix(P.row_P, N, dims) {
    takeColumns(P.row_P, P.col_P);
    takeValues(P.row_P, P.val_P);
}

SlicedMatrix::SlicedMatrix(SparseMatrix P, std::size_t N, std::size_t dims)
    : SlicedMatrix(P.row_P.get(), N, dims) {
    takeColumns(P.row_P.get(), P.col_P.get());
    P.col_P.reset();
    takeValues(P.row_P.get(), P.val_P.get());
}

/// Puts the rows of a window into its slices, the longest first.
void SlicedMatrix::sortWindow(const unsigned int* row_P, IndexRange rows) {
    std::uint32_t* const sorted = rows_.get();
    const auto length_of = [row_P](std::uint32_t row) { return row_P[row + 1] - row_P[row]; };
    std::iota(sorted + rows.begin, sorted + rows.end, static_cast<std::uint32_t>(rows.begin));
    std::sort(sorted + rows.begin, sorted + rows.end, [&](std::uint32_t a, std::uint32_t b) {
        return length_of(a) != length_of(b) ? length_of(a) > length_of(b) : a < b;
    });
    for (std::size_t lane = rows.begin; lane < rows.end; ++lane) {
        lengths_[lane] = length_of(sorted[lane]);
        lane_of_row_[sorted[lane]] = static_cast<std::uint32_t>(lane);
    }
}

/// Fills the slices from the entries of the rows, each of which becomes `convert(entry)`; what is
/// left of a slice becomes 0.
template <typename Value, typename Convert>
void SlicedMatrix::fill(const unsigned int* row_P, Value* values, const Convert& convert) const {
    parallel_for_each(sliceCount(), kSliceGrain, [&](std::size_t slice) {
        for (std::size_t lane = 0; lane < kSliceRows; ++lane) {
            const std::uint32_t row = rows_[slice * kSliceRows + lane];
            const std::size_t first = row == kNoRow ? 0 : row_P[row];
            const std::size_t length = lengths_[slice * kSliceRows + lane];
            const std::size_t steps = starts_[slice + 1] - starts_[slice];
            Value* const column = values + starts_[slice] * kSliceRows + lane;
            for (std::size_t k = 0; k < length; ++k) {
                column[k * kSliceRows] = convert(first + k);
            }
            for (std::size_t k = length; k < steps; ++k) {
                column[k * kSliceRows] = Value{0};
            }
        }
    });
}

void SlicedMatrix::takeColumns(const unsigned int* row_P, const unsigned int* col_P) {
    places_ = malloc_array<std::uint32_t>(storedCount());
    require_allocated(places_);
    prefer_huge_pages(places_.get(), storedCount() * sizeof(std::uint32_t));
    const auto dims = static_cast<std::uint32_t>(dims_);
    fill(row_P, places_.get(), [=](std::size_t entry) { return col_P[entry] * dims; });
}

void SlicedMatrix::takeValues(const unsigned int* row_P, const double* val_P) {
    value_block_ = malloc_array<double>(storedCount() + kCacheLine / sizeof(double));
    require_allocated(value_block_);
    prefer_huge_pages(value_block_.get(), storedCount() * sizeof(double));
    void* begin = value_block_.get();
    std::size_t space = storedCount() * sizeof(double) + kCacheLine;
    values_ =
        static_cast<double*>(std::align(kCacheLine, storedCount() * sizeof(double), begin, space));
    fill(row_P, values_, [=](std::size_t entry) { return val_P[entry]; });
}

void SlicedMatrix::multiply(double factor) {
    multiply_all(values_, storedCount(), factor);
    sums_.reset();
}

void SlicedMatrix::divide(double divisor) {
    divide_all(values_, storedCount(), divisor);
    sums_.reset();
}

const AffinitySums& SlicedMatrix::sums() {
    if (!sums_) {
        sums_ = formSums();
    }
    return *sums_;
}

AffinitySums SlicedMatrix::formSums() {
    double* const entropies = slice_sums_.get();
    double* const weights = entropies + sliceCount();
    const auto weigh = slice_kernels(instruction_set()).weigh;
    parallel_for(sliceCount(), kSliceGrain, [&](std::size_t /*worker*/, IndexRange range) {
        weigh(slices(), range.begin, range.end, entropies, weights);
    });
    const auto sum = [this](const double* values) {
        return std::accumulate(values, values + sliceCount(), 0.0);
    };
    return {sum(entropies), sum(weights)};
}

}  // namespace ovik
