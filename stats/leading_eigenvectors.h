#pragma once

#include <cstddef>
#include <vector>

namespace ovik {

/// The largest eigenvalues of a symmetric matrix, and what belongs to them.
struct LeadingEigenvectors {
    /// `count`, the largest first; equal ones in the order in which the iteration left them.
    std::vector<double> values;
    /// Row-major, n x count: column c is the eigenvector of value c, of length 1 and of either
    /// sign.
    std::vector<double> vectors;
};

/// Finds the largest eigenvalues of a symmetric matrix and their eigenvectors, by Householder
/// reflections to a tridiagonal matrix and implicit QL steps, whose rotations the wanted vectors
/// alone take part in. The result does not depend on the number of threads or on the processor: a
/// sum runs in index order, whatever is computed side by side.
///
/// @param matrix  row-major, n x n, both triangles; squares of its entries within the range of
///                `double`; taken over as work space
/// @param count   at most n
/// @throws std::domain_error if a value is not finite, or the iteration finds no end
/// @complexity O(n^3) for the reflections, O(n^2 count) for the vectors; memory for n^2 rotations
/// @par Source Martin, Reinsch and Wilkinson, "Householder's tridiagonalization of a symmetric
/// matrix", Numerische Mathematik 11:181, 1968; Dubrulle, Martin and Wilkinson, "The implicit QL
/// algorithm", Numerische Mathematik 12:377, 1968
LeadingEigenvectors leading_eigenvectors(std::vector<double> matrix,
                                         std::size_t n,
                                         std::size_t count);

}  // namespace ovik
