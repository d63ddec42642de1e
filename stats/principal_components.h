#pragma once

#include <cstddef>
#include <vector>

#include "util/matrix_view.h"

namespace ovik {

/// The directions along which the rows of a matrix vary most, and where the rows lie along them.
struct PrincipalComponents {
    /// How many were asked for.
    std::size_t count = 0;
    /// Row-major, rows x count: the coordinates of the rows.
    std::vector<double> scores;
    /// Row-major, columns x count: column c is the direction of component c, of length 1.
    std::vector<double> loadings;
    /// Of the scores of each component, with rows - 1 as the divisor; the largest first.
    std::vector<double> variances;
    /// Of all columns, likewise.
    double total_variance = 0.0;
    /// Along how many of the components the rows vary by more than rounding errors. Of the others
    /// scores, loadings and variances are 0.
    std::size_t varying = 0;

    /// The coordinates of the rows, rows x count.
    [[nodiscard]] MatrixView<const double> scoresView() const {
        return {scores.data(), count == 0 ? 0 : scores.size() / count, count};
    }

    /// The share of the variance that the components keep, 0 to 1; NaN if there is none to keep.
    [[nodiscard]] double varianceKept() const;
};

/// Finds the first principal components of the rows of a matrix.
///
/// The loading of largest magnitude of each component is positive; of those that differ by less
/// than 1e-9 of it, one after the other, the first is. The result is the same for any number of
/// threads and any processor: an element of the matrix of products, by columns or, if there are
/// fewer rows, by rows, is a sum in index order.
///
/// @param X      its columns centred on 0; at least 2 rows
/// @param count  at most the smaller one of rows and columns
/// @throws std::domain_error if a value is not finite, or far out of scale
/// @complexity O(rows columns m + m^3), m being the smaller one of both; memory for 3 m^2 values
/// and, if there are fewer rows than columns, for a copy of X
/// @par Source Jolliffe, "Principal component analysis", 2nd edition, Springer, 2002
PrincipalComponents principal_components(MatrixView<const double> X, std::size_t count);

}  // namespace ovik
