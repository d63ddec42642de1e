#pragma once

#include <cstddef>

#include "neighbours/partwise_sptree.h"
#include "stats/sparse_matrix.h"
#include "util/malloc_array.h"

namespace ovik {

struct EdgeView;
struct RowCost;

/// The t-SNE gradient and cost with sparse attractive and approximate repulsive forces, for one
/// embedding after the other; after the first, nothing is allocated.
///
/// Entry i of the gradient is pos_f[i] - neg_f[i] / sum_Q: the attractive forces along the entries
/// of the similarity matrix, the repulsive ones of a space-partitioning tree, and its
/// normalisation, to which every point's share is added in point order.
///
/// The cost is the Kullback-Leibler divergence over the stored entries, the sum of
/// p * log((p + DBL_MIN) / (q / sum_Q + DBL_MIN)), formed row by row. It does not steer the
/// optimisation; its logarithms are those of the vector kernels where the numbers allow it.
///
/// All functions take the similarities `P` with N rows, an embedding `Y`, row-major, N x dims, and
/// the accuracy `theta`; see `SPTree`.
///
/// @par Source van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014
class BarnesHutForces {
  public:
    /// Ends the process with "Memory allocation failed!" if the forces do not fit in memory.
    BarnesHutForces(std::size_t N, std::size_t dims);

    /// @param gradient  row-major, N x dims, written
    void gradient(const SparseMatrixView& P, const double* Y, double theta, double* gradient);

    /// 0.0 without points.
    [[nodiscard]] double cost(const SparseMatrixView& P, const double* Y, double theta);

    /// Both, in one walk through the tree and one pass over the entries; the same values.
    ///
    /// @param gradient  row-major, N x dims, written
    /// @return the cost
    double costAndGradient(const SparseMatrixView& P,
                           const double* Y,
                           double theta,
                           double* gradient);

  private:
    [[nodiscard]] EdgeView edgesOf(const SparseMatrixView& P, const double* Y) const;
    void visit(const EdgeView& edges, double theta, double* pos_f, RowCost* costs);
    [[nodiscard]] double normalisation() const;
    void finishGradient(double* gradient, double sum_Q) const;
    [[nodiscard]] double sumCosts(const EdgeView& edges, double sum_Q) const;

    std::size_t N_;
    std::size_t dims_;
    PartwiseSPTree tree_;
    MallocArray<double> neg_f_;
    MallocArray<double> shares_;
    MallocArray<RowCost> row_costs_;
};

}  // namespace ovik
