#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "stats/fit_notes.h"
#include "util/api.h"
#include "util/elementary.h"
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

/// The same for the rows of a matrix.
inline void dense_conditional_affinities(MatrixView<const double> points,
                                         double* P,
                                         double perplexity,
                                         const FitNotes& notes = {}) {
    dense_conditional_affinities(points.values, points.rows, points.columns, P, perplexity, notes);
}

/// Writes the affinities of row n to all rows, by their squared distances from it.
using DenseRow =
    std::function<void(std::size_t n, std::span<const double> squared_distances, double* row)>;

/// Affinities as above; of several perplexities the mean: the sum in their order times the
/// reciprocal of their number.
///
/// @param perplexities  at least one
/// @param elementary    must outlive the function
DenseRow calibrated_row(std::vector<double> perplexities, const Elementary& elementary);

/// The same affinity 1 / K to the K nearest others, those of smallest squared distance; of rows
/// equally far the earlier ones. K is `neighbour_count`, or how many others there are at a finite
/// distance where that is less. All other affinities are 0, but for a diagonal as above.
DenseRow uniform_row(std::size_t neighbour_count);

/// Conditional affinities of any kind; else as the former.
void dense_conditional_affinities(MatrixView<const double> points,
                                  double* P,
                                  const DenseRow& fill_row,
                                  const FitNotes& notes = {});

/// The same by a matrix of distances, which are multiplied by the power of two that brings the
/// largest into [0.5, 1), and then squared; negative ones count as 0.
///
/// @param distances  square; row n has the distances of the others from n
void dense_affinities_of_distances(MatrixView<const double> distances,
                                   double* P,
                                   const DenseRow& fill_row,
                                   const FitNotes& notes = {});

}  // namespace ovik
