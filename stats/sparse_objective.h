#pragma once

#include <cstddef>

#include "stats/objective.h"
#include "stats/sparse_forces.h"
#include "stats/sparse_matrix.h"

namespace ovik {

/// Sparse joint affinities, and forces along their entries against any repulsion.
class SparseObjective : public Objective {
  public:
    /// @param P       symmetric, N rows, entries that sum to 1
    /// @param forces  for embeddings of N points
    SparseObjective(SparseMatrix P, std::size_t N, SparseForces forces);

    void exaggerate(double factor) override;
    void endExaggeration(double factor) override;
    void gradient(const double* Y, double* dY) override;
    [[nodiscard]] double cost(const double* Y) override;
    double costAndGradient(const double* Y, double* dY) override;

    /// Gives the density of the affinity matrix, and the time with fractions of a second.
    [[nodiscard]] std::string report(std::clock_t elapsed) const override;

  private:
    [[nodiscard]] std::size_t entryCount() const { return P_.row_P[N_]; }

    std::size_t N_;
    SparseMatrix P_;
    SparseForces forces_;
};

}  // namespace ovik
