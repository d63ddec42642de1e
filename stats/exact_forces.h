#pragma once

#include <cstddef>

#include "util/api.h"
#include "util/elementary.h"
#include "util/matrix_view.h"

namespace ovik {

/// The t-SNE gradient over all pairs of points.
///
/// Row n is the sum over m, in order, of (Y_n - Y_m) * Q_nm * (P_nm - Q_nm / sum_Q), where Q_nm is
/// 1 / (1 + squared distance) and sum_Q the sum of all Q_nm, row after row. The usual factor of 4
/// is left to the learning rate.
///
/// @param P         row-major, N x N; the diagonal is not read
/// @param Y         row-major, N x dims
/// @param gradient  row-major, N x dims, written
/// @throws WorkMemoryError if the work arrays, O(N) per thread, do not fit in memory
/// @par Source van der Maaten and Hinton, "Visualizing data using t-SNE", JMLR 9:2579, 2008,
/// equation 5
OVIK_API void exact_gradient(
    const double* P, const double* Y, std::size_t N, std::size_t dims, double* gradient);

/// The same with affinities that count for more: `annealing` times the sums of Q_nm * (P_nm - Q_nm
/// / (annealing * sum_Q)).
void exact_gradient(const double* P,
                    const double* Y,
                    std::size_t N,
                    std::size_t dims,
                    double* gradient,
                    double annealing);

/// The same for an embedding with its shape.
inline void exact_gradient(const double* P, MatrixView<const double> Y, double* gradient) {
    exact_gradient(P, Y.values, Y.rows, Y.columns, gradient);
}

/// The Kullback-Leibler divergence of the similarities of an embedding from P, over all pairs.
///
/// The sum over all entries, in order, of P * log((P + DBL_MIN) / (Q / sum_Q + DBL_MIN)); the
/// diagonal takes part with Q = DBL_MIN. Failure of memory as for `exact_gradient`.
///
/// @param P  row-major, N x N
/// @param Y  row-major, N x dims
OVIK_API double exact_cost(const double* P, const double* Y, std::size_t N, std::size_t dims);

/// The same by another logarithm.
double exact_cost(
    const double* P, const double* Y, std::size_t N, std::size_t dims, RealFunction log);

/// What each row of P adds to this cost.
///
/// @param costs  N values, written
void exact_row_costs(const double* P,
                     const double* Y,
                     std::size_t N,
                     std::size_t dims,
                     RealFunction log,
                     double* costs);

/// The misfit of each row (`stats/row_misfit.h`); the diagonal takes no part.
///
/// @param similarity_sums  N values, as of `row_similarity_sums`
/// @param misfits          N values, written
void exact_row_misfits(const double* P,
                       MatrixView<const double> Y,
                       const double* similarity_sums,
                       RealFunction log,
                       double* misfits);

/// The same cost for an embedding with its shape.
inline double exact_cost(const double* P, MatrixView<const double> Y) {
    return exact_cost(P, Y.values, Y.rows, Y.columns);
}

}  // namespace ovik
