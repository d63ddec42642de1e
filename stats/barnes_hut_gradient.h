#pragma once

#include <cstddef>

#include "stats/sparse_matrix.h"
#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// The t-SNE gradient with sparse attractive and approximate repulsive forces: see
/// `TSNE::computeGradient`. The usual factor of 4 is left to the learning rate.
///
/// @param P         joint affinities, with N rows
/// @param Y         embedding, row-major, N x dims
/// @param gradient  row-major, N x dims, written
/// @param theta     accuracy; see `SPTree`
/// @throws WorkMemoryError if its work arrays, O(N), do not fit in memory
/// @par Source van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014
OVIK_API void barnes_hut_gradient(const SparseMatrixView& P,
                                  const double* Y,
                                  std::size_t N,
                                  std::size_t dims,
                                  double* gradient,
                                  double theta);

/// The Kullback-Leibler divergence of the similarities of an embedding from P, over the stored
/// entries, with the approximate normalisation; 0.0 without points. Failure of memory as for
/// `barnes_hut_gradient`.
OVIK_API double barnes_hut_cost(
    const SparseMatrixView& P, const double* Y, std::size_t N, std::size_t dims, double theta);

/// The same for an embedding with its shape.
inline void barnes_hut_gradient(const SparseMatrixView& P,
                                MatrixView<const double> Y,
                                double* gradient,
                                double theta) {
    barnes_hut_gradient(P, Y.values, Y.rows, Y.columns, gradient, theta);
}

inline double barnes_hut_cost(const SparseMatrixView& P, MatrixView<const double> Y, double theta) {
    return barnes_hut_cost(P, Y.values, Y.rows, Y.columns, theta);
}

}  // namespace ovik
