#pragma once

#include "stats/objective.h"
#include "stats/sliced_attraction.h"
#include "stats/sparse_forces.h"

namespace ovik {

/// Sparse joint affinities, and forces along their entries against any repulsion.
class SparseObjective : public Objective {
  public:
    /// @param attraction  by a symmetric matrix with entries that sum to 1
    /// @param forces      for embeddings with a point for each of its rows
    SparseObjective(SlicedAttraction attraction, SparseForces forces);

    void exaggerate(double factor) override;
    void endExaggeration(double factor) override;
    void anneal(double factor) override;
    void gradient(const double* Y, double* dY) override;
    [[nodiscard]] double cost(const double* Y) override;
    void rowCosts(const double* Y, double* costs) override;
    void rowMisfits(const double* Y, const double* similarity_sums, double* misfits) override;
    double costAndGradient(const double* Y, double* dY) override;

    /// Gives the density of the affinity matrix, and the time with fractions of a second.
    [[nodiscard]] std::string report(std::clock_t elapsed) const override;

  private:
    SlicedAttraction attraction_;
    SparseForces forces_;
};

}  // namespace ovik
