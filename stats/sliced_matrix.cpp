#include "stats/sliced_matrix.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>
#include <vector>

#include "stats/elementwise.h"
#include "util/cache_line.h"
#include "util/huge_pages.h"
#include "util/malloc_array.h"

namespace ovik {

namespace {

/// Fewest slices for which another thread pays.
constexpr std::size_t kSliceGrain = 16;

void check_size(std::size_t N, std::size_t dims) {
    constexpr std::size_t kPlaces = std::size_t{std::numeric_limits<std::uint32_t>::max()};
    if (N >= kPlaces || (dims > 0 && N > kPlaces / dims)) {
        throw std::length_error("the embedding has more coordinates than 32 bits can count");
    }
}

SliceLayout layout_of(const unsigned int* row_P, std::size_t N, std::size_t dims) {
    check_size(N, dims);
    const auto lengths = malloc_array<std::uint32_t>(N);
    require_allocated(lengths);
    for (std::size_t n = 0; n < N; ++n) {
        lengths[n] = row_P[n + 1] - row_P[n];
    }
    return SliceLayout({lengths.get(), N});
}

}  // namespace

SlicedMatrix::SlicedMatrix(SliceLayout layout,
                           SliceEntries entries,
                           std::size_t entry_count,
                           std::size_t dims,
                           MallocArray<std::uint32_t> order)
    : layout_(std::move(layout)),
      entries_(std::move(entries)),
      entry_count_(entry_count),
      dims_(dims),
      rank_rows_(layout_.rowCount()),
      order_(std::move(order)),
      lane_sums_(malloc_array<double>(2 * sliceCount() * kSliceRows)),
      slice_sums_(malloc_array<double>(sliceCount())) {
    require_allocated(lane_sums_, slice_sums_);
    check_size(rowCount(), dims);
    if (order_ != nullptr) {
        rememberOrder();
    }
}

SlicedMatrix::SlicedMatrix(SliceLayout layout,
                           SliceEntries entries,
                           std::size_t entry_count,
                           std::size_t dims,
                           const RankRows& rows)
    : SlicedMatrix(std::move(layout), std::move(entries), entry_count, dims, nullptr) {
    check_size(rows.count(), dims);
    rank_rows_ = rows;
    if (rows.own().begin > 0) {
        rememberTargets();
    }
}

SlicedMatrix::SlicedMatrix(const SparseMatrixView& P, std::size_t N, std::size_t dims)
    : SlicedMatrix(layout_of(P.row_P, N, dims), {}, N > 0 ? P.row_P[N] : 0, dims, nullptr) {
    takeColumns(P.row_P, P.col_P, dims);
    takeValues(P.row_P, P.val_P);
}

SlicedMatrix::SlicedMatrix(SparseMatrix P, std::size_t N, std::size_t dims)
    : SlicedMatrix(layout_of(P.row_P.get(), N, dims), {}, N > 0 ? P.row_P[N] : 0, dims, nullptr) {
    takeColumns(P.row_P.get(), P.col_P.get(), dims);
    P.col_P.reset();
    takeValues(P.row_P.get(), P.val_P.get());
}

/// Forms what follows from an order of the rows other than their own.
void SlicedMatrix::rememberOrder() {
    const std::size_t N = rowCount();
    const std::size_t lanes = sliceCount() * kSliceRows;
    lane_of_row_ = malloc_array<std::uint32_t>(N);
    targets_ = malloc_array<std::uint32_t>(lanes);
    plain_lanes_ = malloc_array<std::uint32_t>(lanes);
    const auto lengths = malloc_array<std::uint32_t>(N);
    require_allocated(lane_of_row_, targets_, plain_lanes_, lengths);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        const std::uint32_t position = layout_.rows()[lane];
        targets_[lane] = position == kNoRow ? kNoRow : order_[position];
        if (position != kNoRow) {
            lane_of_row_[targets_[lane]] = static_cast<std::uint32_t>(lane);
            lengths[targets_[lane]] = layout_.lengths()[lane];
        }
    }
    const SliceLayout plain({lengths.get(), N});
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        const std::uint32_t row = plain.rows()[lane];
        plain_lanes_[lane] = row == kNoRow ? kNoRow : lane_of_row_[row];
    }
}

/// Tells the rows of the slices from those of the ranks before.
void SlicedMatrix::rememberTargets() {
    const std::size_t lanes = sliceCount() * kSliceRows;
    const auto first = static_cast<std::uint32_t>(rank_rows_.own().begin);
    targets_ = malloc_array<std::uint32_t>(lanes);
    require_allocated(targets_);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        const std::uint32_t row = layout_.rows()[lane];
        targets_[lane] = row == kNoRow ? kNoRow : first + row;
    }
}

/// Fills the slices from the entries of the rows, each of which becomes `convert(entry)`; what is
/// left of a slice becomes 0.
template <typename Value, typename Convert>
void SlicedMatrix::fill(const unsigned int* row_P, Value* values, const Convert& convert) const {
    parallel_for_each(sliceCount(), kSliceGrain, [&](std::size_t slice) {
        const std::size_t* const starts = layout_.starts();
        for (std::size_t lane = slice * kSliceRows; lane < (slice + 1) * kSliceRows; ++lane) {
            const std::uint32_t row = layout_.rows()[lane];
            const std::size_t first = row == kNoRow ? 0 : row_P[row];
            const std::size_t length = layout_.lengths()[lane];
            const std::size_t steps = starts[slice + 1] - starts[slice];
            Value* const column = values + layout_.firstOf(lane);
            for (std::size_t k = 0; k < length; ++k) {
                column[k * kSliceRows] = convert(first + k);
            }
            for (std::size_t k = length; k < steps; ++k) {
                column[k * kSliceRows] = Value{0};
            }
        }
    });
}

void SlicedMatrix::takeColumns(const unsigned int* row_P,
                               const unsigned int* col_P,
                               std::size_t dims) {
    entries_.places = malloc_array<std::uint32_t>(storedCount());
    require_allocated(entries_.places);
    prefer_huge_pages(entries_.places.get(), storedCount() * sizeof(std::uint32_t));
    const auto step = static_cast<std::uint32_t>(dims);
    fill(row_P, entries_.places.get(), [=](std::size_t entry) { return col_P[entry] * step; });
}

void SlicedMatrix::takeValues(const unsigned int* row_P, const double* val_P) {
    entries_.value_block = malloc_array<double>(storedCount() + kCacheLine / sizeof(double));
    require_allocated(entries_.value_block);
    prefer_huge_pages(entries_.value_block.get(), storedCount() * sizeof(double));
    entries_.values = at_cache_line(entries_.value_block.get(), storedCount());
    fill(row_P, entries_.values, [=](std::size_t entry) { return val_P[entry]; });
}

MatrixSlices SlicedMatrix::slices() const {
    const std::uint32_t* const targets = targets_ != nullptr ? targets_.get() : layout_.rows();
    return {layout_.starts(),
            isReordered() ? layout_.rows() : targets,
            layout_.lengths(),
            targets,
            entries_.places.get(),
            entries_.form,
            entries_.values,
            entries_.singles,
            entries_.factor};
}

double SlicedMatrix::valueAt(std::size_t i) const {
    switch (entries_.form) {
        case ValueForm::Single:
            return double{entries_.singles[i]} * entries_.factor;
        case ValueForm::OneOrTwo:
            return entries_.places[i] % 2 == 0 ? entries_.factor : 2.0 * entries_.factor;
        default:
            return entries_.values[i];
    }
}

void SlicedMatrix::multiply(double factor) {
    if (entries_.form == ValueForm::Double) {
        multiply_all(entries_.values, storedCount(), factor);
    } else {
        entries_.factor *= factor;
    }
    sums_.reset();
}

void SlicedMatrix::divide(double divisor) {
    if (entries_.form == ValueForm::Double) {
        divide_all(entries_.values, storedCount(), divisor);
    } else {
        entries_.factor /= divisor;
    }
    sums_.reset();
}

void SlicedMatrix::divideBySum() {
    divide(rank_rows_.ranks().addInTurn(0.0, [this](double start) { return plainSum(start); }));
}

/// The values added one after the other, row by row.
double SlicedMatrix::plainSum(double start) const {
    // So many rows at a time are brought into one piece.
    constexpr std::size_t kPieceRows = 512;
    const std::size_t N = rowCount();
    std::vector<std::size_t> starts(kPieceRows + 1);
    std::vector<double> values;
    double sum = start;
    for (std::size_t begin = 0; begin < N; begin += kPieceRows) {
        const std::size_t count = std::min(kPieceRows, N - begin);
        for (std::size_t i = 0; i < count; ++i) {
            starts[i + 1] = starts[i] + layout_.lengths()[laneOf(begin + i)];
        }
        values.resize(std::max(values.size(), starts[count]));
        parallel_for_each(count, kSliceGrain, [&](std::size_t i) {
            std::size_t next = starts[i];
            forEachEntry(begin + i,
                         [&](std::size_t /*place*/, double value) { values[next++] = value; });
        });
        sum = sum_in_order(sum, values.data(), starts[count]);
    }
    return sum;
}

void SlicedMatrix::pointsInOrder(const double* Y, double* to) const {
    const std::size_t dims = dims_;
    parallel_for_each(rowCount(), kElementwiseGrain, [=, order = order_.get()](std::size_t i) {
        const std::size_t row = order != nullptr ? order[i] : i;
        std::copy_n(Y + row * dims, dims, to + i * dims);
    });
}

double SlicedMatrix::sumOfLanes(const double* lane_values) const {
    double* const sums = slice_sums_.get();
    parallel_for_each(
        sliceCount(), kSliceGrain, [=, lanes = plain_lanes_.get()](std::size_t slice) {
            double sum = 0.0;
            for (std::size_t lane = slice * kSliceRows; lane < (slice + 1) * kSliceRows; ++lane) {
                if (lanes == nullptr) {
                    sum += lane_values[lane];
                } else if (lanes[lane] != kNoRow) {
                    sum += lane_values[lanes[lane]];
                }
            }
            sums[slice] = sum;
        });
    return rank_rows_.ranks().addInTurn(
        0.0, [&](double start) { return std::accumulate(sums, sums + sliceCount(), start); });
}

const AffinitySums& SlicedMatrix::sums() {
    if (!sums_) {
        sums_ = formSums();
    }
    return *sums_;
}

AffinitySums SlicedMatrix::formSums() {
    double* const entropies = lane_sums_.get();
    double* const weights = entropies + sliceCount() * kSliceRows;
    const auto weigh = slice_kernels(instruction_set()).weigh;
    parallel_for(sliceCount(), kSliceGrain, [&](std::size_t /*worker*/, IndexRange range) {
        weigh(slices(), range.begin, range.end, entropies, weights);
    });
    return {sumOfLanes(entropies), sumOfLanes(weights)};
}

}  // namespace ovik
