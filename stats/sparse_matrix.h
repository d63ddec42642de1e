#pragma once

#include <cstddef>

#include "util/malloc_pointer.h"

/// Sparse matrices of affinities in compressed-row form, with N rows.

namespace ovik {

/// A matrix that is owned elsewhere.
struct SparseMatrixView {
    /// First entry of each row; N + 1 values, the last one the number of entries.
    const unsigned int* row_P;
    /// Column of each entry.
    const unsigned int* col_P;
    /// Value of each entry.
    const double* val_P;
};

/// A matrix that owns its three blocks.
struct SparseMatrix {
    MallocArray<unsigned int> row_P;
    MallocArray<unsigned int> col_P;
    MallocArray<double> val_P;

    [[nodiscard]] SparseMatrixView view() const { return {row_P.get(), col_P.get(), val_P.get()}; }
};

}  // namespace ovik
