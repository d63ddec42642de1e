#pragma once

#include <cstddef>

#include "stats/kernels/edge_pass.h"
#include "stats/sparse_matrix.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

/// The attractive forces along the entries of a sparse matrix of joint affinities, and the cost of
/// an embedding over them; after the construction, nothing is allocated.
///
/// The cost is the Kullback-Leibler divergence over the stored entries, the sum of
/// p * log((p + DBL_MIN) / (q / Z + DBL_MIN)), formed row by row. It does not steer the
/// optimisation; its logarithms are those of the vector kernels where the numbers allow it.
class Attraction {
  public:
    /// @param N     rows of the matrix and points of the embeddings
    /// @param dims  of the embeddings
    /// @throws WorkMemoryError
    Attraction(std::size_t N, std::size_t dims);

    /// Passes the entries of some rows. Different rows may be passed side by side.
    ///
    /// @param P          N rows
    /// @param Y          row-major, N x dims
    /// @param forces     row-major, N x dims; the rows are written; null if none are wanted
    /// @param with_cost  whether `cost` will be asked for this embedding
    void pass(const SparseMatrixView& P,
              const double* Y,
              IndexRange rows,
              double* forces,
              bool with_cost);

    /// The cost of the embedding whose rows have all been passed; 0.0 without entries.
    ///
    /// @param Z  normalisation
    [[nodiscard]] double cost(const SparseMatrixView& P, const double* Y, double Z) const;

  private:
    [[nodiscard]] EdgeView edgesOf(const SparseMatrixView& P, const double* Y) const;

    std::size_t N_;
    std::size_t dims_;
    EdgePass pass_;
    MallocArray<RowCost> row_costs_;
};

}  // namespace ovik
