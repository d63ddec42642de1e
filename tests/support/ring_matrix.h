#pragma once

#include <cstddef>
#include <vector>

#include "stats/sparse_matrix.h"

#include "tests/plain/plain_sptree.h"

namespace ovik::test {

/// A sparse matrix in which every point has its next three as neighbours, and its dense form.
struct Ring {
    explicit Ring(std::size_t N) : dense(N * N, 0.0), row_P{0} {
        for (std::size_t n = 0; n < N; ++n) {
            for (std::size_t step = 1; step <= 3; ++step) {
                const std::size_t m = (n + step) % N;
                const double p = 1.0 / static_cast<double>(N * 3 * step);
                col_P.push_back(static_cast<unsigned int>(m));
                val_P.push_back(p);
                dense[n * N + m] = p;
            }
            row_P.push_back(static_cast<unsigned int>(col_P.size()));
        }
    }

    [[nodiscard]] SparseMatrixView view() const {
        return {row_P.data(), col_P.data(), val_P.data()};
    }

    std::vector<double> dense;
    std::vector<unsigned int> row_P;
    std::vector<unsigned int> col_P;
    std::vector<double> val_P;
};

inline plain::SparseRows rows_of(const Ring& ring) {
    plain::SparseRows rows(ring.row_P.size() - 1);
    for (std::size_t n = 0; n < rows.size(); ++n) {
        for (std::size_t i = ring.row_P[n]; i < ring.row_P[n + 1]; ++i) {
            rows[n].emplace_back(ring.col_P[i], ring.val_P[i]);
        }
    }
    return rows;
}

}  // namespace ovik::test
