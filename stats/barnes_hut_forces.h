#pragma once

#include <cstddef>

#include "stats/sparse_matrix.h"

namespace ovik {

/// The t-SNE gradient with sparse attractive and approximate repulsive forces.
///
/// Entry i is pos_f[i] - neg_f[i] / sum_Q: the attractive forces along the entries of the
/// similarity matrix, the repulsive ones of a space-partitioning tree, and its normalisation, to
/// which every point's share is added in point order. Ends the process with "Memory allocation
/// failed!" if the forces do not fit in memory.
///
/// @param P         similarities, N rows
/// @param Y         row-major, N x dims
/// @param gradient  row-major, N x dims, written
/// @param theta     accuracy; see `SPTree`
/// @par Source van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014
void barnes_hut_gradient(const SparseMatrixView& P,
                         const double* Y,
                         std::size_t N,
                         std::size_t dims,
                         double* gradient,
                         double theta);

/// The Kullback-Leibler divergence over the stored entries of the similarity matrix.
///
/// The sum over all entries, in order, of p * log((p + DBL_MIN) / (q / sum_Q + DBL_MIN)), with the
/// normalisation of `barnes_hut_gradient`. 0.0 without points.
double barnes_hut_cost(
    const SparseMatrixView& P, const double* Y, std::size_t N, std::size_t dims, double theta);

}  // namespace ovik
