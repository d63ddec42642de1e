#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "stats/kernels/slice_pass.h"
#include "stats/rank_rows.h"
#include "stats/slice_layout.h"
#include "stats/sparse_matrix.h"
#include "util/malloc_pointer.h"

namespace ovik {

/// The sums over all entries of which the cost of an embedding is made beside those that depend on
/// the embedding.
struct AffinitySums {
    /// The sum of p * log(p + DBL_MIN); NaN if affinities are far from their range.
    double entropy;
    /// The sum of p.
    double weight;
};

/// The entries of a matrix as they lie in slices.
struct SliceEntries {
    /// Where the point of each entry's column begins, and with `ValueForm::OneOrTwo` whether its
    /// value is twice the factor; 0 where there is no entry.
    MallocArray<std::uint32_t> places;
    ValueForm form = ValueForm::Double;
    /// With `ValueForm::Double`, from `values` on, which is at a cache line.
    MallocArray<double> value_block;
    double* values = nullptr;
    /// The same with `ValueForm::Single`.
    MallocArray<float> single_block;
    float* singles = nullptr;
    /// Of the other forms.
    double factor = 1.0;
};

/// A sparse matrix of joint affinities as the passes over its entries read it: in slices of eight
/// rows, which are computed side by side, each with its entries in order.
///
/// The rows may lie in another order than that of the matrix, so that those that have entries of
/// one another are near in memory; the points of an embedding have to be brought into that order
/// before a pass (`pointsInOrder`). Results do not depend on it.
///
/// Of a matrix that several ranks share it holds the rows of one; these are counted from the first
/// of them, and sums are those over the rows of all.
///
/// @par Source Monakov, Lokhmotov and Avetisyan, "Automatically tuning sparse matrix-vector
/// multiplication for GPU architectures", HiPEAC 2010; for the windows Kreutzer et al., "A unified
/// sparse matrix data format for efficient general sparse matrix-vector multiplication on modern
/// processors with wide SIMD units", SIAM J. Sci. Comput. 36:C401, 2014
class SlicedMatrix {
  public:
    /// Copies a matrix.
    ///
    /// @param P     N rows
    /// @param N     below 2^32 - 1
    /// @param dims  of the embeddings that it will be seen with
    /// @throws WorkMemoryError
    /// @throws std::length_error if an embedding has 2^32 coordinates or more
    SlicedMatrix(const SparseMatrixView& P, std::size_t N, std::size_t dims);

    /// Takes the place of a matrix, whose blocks are released as soon as they have been read.
    SlicedMatrix(SparseMatrix P, std::size_t N, std::size_t dims);

    /// Of entries that lie in slices already.
    ///
    /// @param layout       of the rows in the order in which they lie
    /// @param entry_count  those that count
    /// @param order        the row at each place of that order; null for their own
    /// @throws WorkMemoryError
    SlicedMatrix(SliceLayout layout,
                 SliceEntries entries,
                 std::size_t entry_count,
                 std::size_t dims,
                 MallocArray<std::uint32_t> order);

    /// The rows of a rank, in their own order.
    ///
    /// @param layout       of its rows
    /// @param entry_count  of all ranks
    /// @throws WorkMemoryError
    SlicedMatrix(SliceLayout layout,
                 SliceEntries entries,
                 std::size_t entry_count,
                 std::size_t dims,
                 const RankRows& rows);

    [[nodiscard]] std::size_t rowCount() const { return layout_.rowCount(); }

    /// The rows among those of all ranks.
    [[nodiscard]] const RankRows& rankRows() const { return rank_rows_; }

    /// Of all ranks.
    [[nodiscard]] std::size_t entryCount() const { return entry_count_; }

    [[nodiscard]] std::size_t sliceCount() const { return layout_.sliceCount(); }

    [[nodiscard]] std::size_t storedCount() const { return layout_.storedCount(); }

    [[nodiscard]] MatrixSlices slices() const;

    /// Multiplies every value.
    void multiply(double factor);

    /// Divides every value.
    void divide(double divisor);

    /// Divides every value by the sum of all, which is formed in the order of the rows.
    void divideBySum();

    /// The sums of the values as they stand; formed when they are asked for first.
    const AffinitySums& sums();

    /// Whether the rows lie in another order than that of the matrix.
    [[nodiscard]] bool isReordered() const { return order_ != nullptr; }

    /// Copies the points of an embedding in the order in which the rows lie.
    ///
    /// @param Y   row-major, N x dims
    /// @param to  of the same shape
    void pointsInOrder(const double* Y, double* to) const;

    /// Where in the order of the slices the point of a row is.
    [[nodiscard]] std::size_t positionOf(std::size_t row) const {
        return layout_.rows()[laneOf(row)];
    }

    /// Adds what a pass has written for each row of the slices: by slices of the rows in their own
    /// order, whatever the one in which they lie.
    ///
    /// @param lane_values  `kSliceRows` for each slice
    [[nodiscard]] double sumOfLanes(const double* lane_values) const;

    /// Runs `visit(place, value)` for the entries of a row in their order, where `place` is where
    /// the point of the column begins in an embedding in the order of the slices.
    template <typename Visit>
    void forEachEntry(std::size_t row, const Visit& visit) const {
        const std::size_t lane = laneOf(row);
        const std::size_t first = layout_.firstOf(lane);
        for (std::size_t k = 0; k < layout_.lengths()[lane]; ++k) {
            const std::size_t i = first + k * kSliceRows;
            visit(placeAt(i), valueAt(i));
        }
    }

  private:
    [[nodiscard]] std::size_t laneOf(std::size_t row) const {
        return lane_of_row_ != nullptr ? lane_of_row_[row] : layout_.lanes()[row];
    }

    [[nodiscard]] std::size_t placeAt(std::size_t i) const {
        return entries_.places[i] >> (entries_.form == ValueForm::OneOrTwo ? 1U : 0U);
    }

    [[nodiscard]] double valueAt(std::size_t i) const;

    void takeColumns(const unsigned int* row_P, const unsigned int* col_P, std::size_t dims);
    void takeValues(const unsigned int* row_P, const double* val_P);
    template <typename Value, typename Convert>
    void fill(const unsigned int* row_P, Value* values, const Convert& convert) const;
    void rememberOrder();
    void rememberTargets();
    [[nodiscard]] double plainSum(double start) const;
    [[nodiscard]] AffinitySums formSums();

    SliceLayout layout_;
    SliceEntries entries_;
    std::size_t entry_count_;
    std::size_t dims_;
    RankRows rank_rows_;
    /// The row at each place of the order in which they lie; null for their own, and so are the
    /// others.
    MallocArray<std::uint32_t> order_;
    MallocArray<std::uint32_t> lane_of_row_;
    /// The rows of the slices as the matrix, with those of all ranks, counts them; not null either
    /// where the first rows are another rank's.
    MallocArray<std::uint32_t> targets_;
    /// Where the rows lie that would share slices in their own order; `kNoRow` for none.
    MallocArray<std::uint32_t> plain_lanes_;
    /// Of each row of the slices, while the sums are formed.
    MallocArray<double> lane_sums_;
    /// Of each slice, while values are added up.
    MallocArray<double> slice_sums_;
    std::optional<AffinitySums> sums_;
};

}  // namespace ovik
