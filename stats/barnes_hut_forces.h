#pragma once

#include <cstddef>
#include <memory>

#include "stats/sparse_matrix.h"
#include "util/api.h"

namespace ovik {

class SparseForces;
class TreeRepulsion;

/// The t-SNE gradient and cost with sparse attractive and approximate repulsive forces, for one
/// embedding after the other; after the first, nothing is allocated.
///
/// Entry i of the gradient is attraction[i] - repulsion[i] / Z: the attractive forces along the
/// entries of the similarity matrix, the repulsive ones of a space-partitioning tree, and its
/// normalisation Z, to which every point's term is added in point order. The cost is that of
/// `Attraction`.
///
/// All functions take the similarities `P` with N rows, an embedding `Y`, row-major, N x dims, and
/// the accuracy `theta`; see `SPTree`.
///
/// @par Source van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014
class BarnesHutForces {
  public:
    /// @throws WorkMemoryError if the forces do not fit in memory
    OVIK_API BarnesHutForces(std::size_t N, std::size_t dims);

    OVIK_API ~BarnesHutForces();

    /// @param gradient  row-major, N x dims, written
    OVIK_API void gradient(const SparseMatrixView& P,
                           const double* Y,
                           double theta,
                           double* gradient);

    /// 0.0 without points.
    [[nodiscard]] OVIK_API double cost(const SparseMatrixView& P, const double* Y, double theta);

    /// Both, in one walk through the tree and one pass over the entries; the same values.
    ///
    /// @param gradient  row-major, N x dims, written
    /// @return the cost
    OVIK_API double costAndGradient(const SparseMatrixView& P,
                                    const double* Y,
                                    double theta,
                                    double* gradient);

  private:
    std::unique_ptr<SparseForces> forces_;
    /// That of `forces_`.
    TreeRepulsion* repulsion_;
};

/// `BarnesHutForces::gradient` for one embedding.
OVIK_API void barnes_hut_gradient(const SparseMatrixView& P,
                                  const double* Y,
                                  std::size_t N,
                                  std::size_t dims,
                                  double* gradient,
                                  double theta);

/// `BarnesHutForces::cost` for one embedding.
OVIK_API double barnes_hut_cost(
    const SparseMatrixView& P, const double* Y, std::size_t N, std::size_t dims, double theta);

}  // namespace ovik
