#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "stats/kernels/slice_pass.h"
#include "stats/sparse_matrix.h"
#include "util/malloc_pointer.h"
#include "util/parallel.h"

namespace ovik {

/// The sums over all entries of which the cost of an embedding is made beside those that depend on
/// the embedding.
struct AffinitySums {
    /// The sum of p * log(p + DBL_MIN); NaN if affinities are far from their range.
    double entropy;
    /// The sum of p.
    double weight;
};

/// A sparse matrix of joint affinities as the passes over its entries read it: in slices of eight
/// rows, which are computed side by side, each with its entries in order.
///
/// Within every window of 4096 rows, rows of like length share a slice, so that little is filled
/// up.
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

    [[nodiscard]] std::size_t rowCount() const { return N_; }

    [[nodiscard]] std::size_t entryCount() const { return entry_count_; }

    [[nodiscard]] std::size_t sliceCount() const { return (N_ + kSliceRows - 1) / kSliceRows; }

    [[nodiscard]] MatrixSlices slices() const {
        return {starts_.get(), rows_.get(), lengths_.get(), places_.get(), values_};
    }

    /// Multiplies every value.
    void multiply(double factor);

    /// Divides every value.
    void divide(double divisor);

    /// The sums of the values as they stand; formed when they are asked for first.
    const AffinitySums& sums();

    /// Runs `visit(place, value)` for the entries of a row in their order, where `place` is where
    /// the point of the column begins in an embedding.
    template <typename Visit>
    void forEachEntry(std::size_t row, const Visit& visit) const {
        const std::size_t lane = lane_of_row_[row];
        const std::size_t first = starts_[lane / kSliceRows] * kSliceRows + lane % kSliceRows;
        for (std::size_t k = 0; k < lengths_[lane]; ++k) {
            visit(std::size_t{places_[first + k * kSliceRows]}, values_[first + k * kSliceRows]);
        }
    }

  private:
    SlicedMatrix(const unsigned int* row_P, std::size_t N, std::size_t dims);

    /// Steps of all slices times the rows of a slice.
    [[nodiscard]] std::size_t storedCount() const { return starts_[sliceCount()] * kSliceRows; }

    void sortWindow(const unsigned int* row_P, IndexRange rows);
    void takeColumns(const unsigned int* row_P, const unsigned int* col_P);
    void takeValues(const unsigned int* row_P, const double* val_P);
    template <typename Value, typename Convert>
    void fill(const unsigned int* row_P, Value* values, const Convert& convert) const;
    [[nodiscard]] AffinitySums formSums();

    std::size_t N_;
    std::size_t dims_;
    std::size_t entry_count_;
    MallocArray<std::size_t> starts_;
    MallocArray<std::uint32_t> rows_;
    MallocArray<std::uint32_t> lengths_;
    /// Of each row: its slice and place in it, as an index of `rows_`.
    MallocArray<std::uint32_t> lane_of_row_;
    MallocArray<std::uint32_t> places_;
    MallocArray<double> value_block_;
    /// In `value_block_`, where a cache line begins.
    double* values_ = nullptr;
    /// Of each slice, while the sums are formed.
    MallocArray<double> slice_sums_;
    std::optional<AffinitySums> sums_;
};

}  // namespace ovik
