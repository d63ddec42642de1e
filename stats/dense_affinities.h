#pragma once

#include <cstddef>

#include "stats/fit_notes.h"
#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// Conditional affinities P(m|n) of all pairs of points, each row calibrated to a perplexity
/// (at most 500 attempts) and normalised to sum 1. The diagonal is a tiny positive number, not
/// zero.
///
/// Rows are spread over the cores.
///
/// @param points  row-major, point_count x dims
/// @param P       row-major, point_count x point_count, written
/// @param notes   told `DistancesBegin` and `DistancesDone`
/// @throws WorkMemoryError if the matrix of distances does not fit in memory
OVIK_API void dense_conditional_affinities(const double* points,
                                           std::size_t point_count,
                                           std::size_t dims,
                                           double* P,
                                           double perplexity,
                                           const FitNotes& notes = {});

/// The same by a matrix of distances, which are multiplied by the power of two that brings the
/// largest into [0.5, 1), and then squared; negative ones count as 0.
///
/// @param distances  square; row n has the distances of the others from n
void dense_affinities_of_distances(MatrixView<const double> distances,
                                   double* P,
                                   double perplexity,
                                   const FitNotes& notes = {});

/// The same for the rows of a matrix.
inline void dense_conditional_affinities(MatrixView<const double> points,
                                         double* P,
                                         double perplexity,
                                         const FitNotes& notes = {}) {
    dense_conditional_affinities(points.values, points.rows, points.columns, P, perplexity, notes);
}

}  // namespace ovik
