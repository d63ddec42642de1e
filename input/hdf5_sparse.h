#pragma once

#include <cstddef>
#include <string>

#include "input/hdf5_dataset.h"
#include "input/hdf5_file.h"
#include "input/sparse_rows.h"

namespace ovik::hdf5 {

/// How the arrays `data`, `indices` and `indptr` of a group make a sparse matrix.
struct SparseLayout {
    /// The group.
    std::string path;
    std::size_t rows = 0;
    std::size_t columns = 0;
    /// Whether the entries come column by column (CSC), and not row by row (CSR).
    bool is_by_columns = false;
};

/// Reads a sparse matrix.
///
/// @param cure      of a matrix that does not fit in memory
/// @param on_share  is told after every few entries
/// @throws InputError with path, row and column if the arrays do not fit together, an index is out
/// of range or stands twice, or a value is not finite; if there is too little memory
SparseRows read_sparse(const File& file,
                       const SparseLayout& layout,
                       const std::string& cure,
                       const OnShare& on_share = {});

}  // namespace ovik::hdf5
