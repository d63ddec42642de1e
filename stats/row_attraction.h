#pragma once

#include <cstddef>

#include "stats/attraction.h"
#include "stats/kernels/edge_pass.h"
#include "stats/sparse_matrix.h"
#include "util/malloc_array.h"

namespace ovik {

/// Attraction along a matrix in compressed rows, for one that is passed too seldom to be sliced;
/// after the construction, nothing is allocated.
///
/// The cost is formed row by row, with the platform's logarithms, or those of the vector
/// kernels where the numbers allow it.
class RowAttraction : public Attraction {
  public:
    /// @param P     N rows; has to outlive the attraction
    /// @param N     rows of the matrix and points of the embeddings
    /// @param dims  of the embeddings
    /// @throws WorkMemoryError
    RowAttraction(const SparseMatrixView& P, std::size_t N, std::size_t dims);

    void pass(const double* Y, IndexRange rows, double* forces, bool with_cost) override;
    [[nodiscard]] double cost(const double* Y, double Z) override;
    void rowCosts(const double* Y, double Z, double* costs) override;
    void rowMisfits(const double* Y, const double* similarity_sums, double* misfits) override;

  private:
    [[nodiscard]] EdgeView edgesOf(const double* Y) const;

    SparseMatrixView P_;
    std::size_t N_;
    std::size_t dims_;
    EdgePass pass_;
    MallocArray<RowCost> row_costs_;
};

}  // namespace ovik
