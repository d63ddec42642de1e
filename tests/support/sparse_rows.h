#pragma once

#include <vector>

#include "stats/sparse_matrix.h"

namespace ovik::test {

/// A sparse matrix that owns its rows.
struct SparseRows {
    std::vector<unsigned int> row_P;
    std::vector<unsigned int> col_P;
    std::vector<double> val_P;

    [[nodiscard]] SparseMatrixView view() const {
        return {row_P.data(), col_P.data(), val_P.data()};
    }
};

}  // namespace ovik::test
