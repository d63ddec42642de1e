#pragma once

#include <cstddef>
#include <functional>

#include "input/sparse_rows.h"
#include "stats/principal_components.h"

namespace ovik {

/// Components of a sparse matrix, and how exact they are.
struct SparseComponents {
    PrincipalComponents components;
    /// The largest residual of a component, |C v - l v| for the matrix of covariances C, its unit
    /// vector v and its variance l, as a share of the largest variance.
    double residual = 0.0;
    /// Directions among which the components were found.
    std::size_t directions = 0;
};

/// A residual below which components count as found.
constexpr double kComponentTolerance = 1e-7;

/// The most directions among which `count` components are looked for.
constexpr std::size_t most_directions(std::size_t count) {
    return 8 * count + 160;
}

/// Finds the first principal components of the rows of a sparse matrix, whose columns count as
/// centred without being so: no dense matrix of its extents is ever made. The components are the
/// best in the space that grows by products of the covariances with a block of 16 directions, the
/// first of them pseudo-random and always the same, until the residuals are below the tolerance, or
/// there are `most_directions`.
///
/// Signs are those of `principal_components`. The result is the same for any number of threads and
/// any processor: every sum runs in the order of its index.
///
/// @param X        at least 2 rows; finite, squares of its values within the range of `double`
/// @param count    at least 1, below the smaller one of rows and columns
/// @param on_step  null, or told how many directions there are, of the most
/// @throws std::domain_error if a value is not finite, or far out of scale
/// @complexity O(entries m + columns m^2 + m^3) for m directions; memory for columns (m + count)
/// and rows (count + 16) values
/// @par Source Golub and Underwood, "The block Lanczos method for computing eigenvalues",
/// Mathematical Software III, 1977; Saad, "Numerical methods for large eigenvalue problems", 2011
SparseComponents sparse_components(
    const SparseRows& X,
    std::size_t count,
    const std::function<void(std::size_t directions, std::size_t most)>& on_step = {});

}  // namespace ovik
