#pragma once

#include <cstddef>

#include "stats/objective.h"
#include "util/malloc_array.h"

namespace ovik {

/// The exact method: dense similarities, forces over all pairs.
class ExactObjective : public Objective {
  public:
    /// Computes the joint similarities of the rows of X, which sum to 1.
    /// Remarks "Exact?" and "Symmetrizing...\n" go to standard error.
    /// Ends the process with "Memory allocation failed!" if an N x N matrix does not fit in memory.
    ///
    /// @param X         row-major, N x D; read here only
    /// @param out_dims  dimensions of the embedding
    ExactObjective(
        const double* X, std::size_t N, std::size_t D, std::size_t out_dims, double perplexity);

    void exaggerate(double factor) override;
    void relax(double factor) override;
    void gradient(const double* Y, double* dY) override;
    [[nodiscard]] double cost(const double* Y) override;
    double costAndGradient(const double* Y, double* dY) override;

    /// Gives whole seconds.
    [[nodiscard]] std::string report(std::clock_t elapsed) const override;

  private:
    std::size_t N_;
    std::size_t out_dims_;
    MallocArray<double> P_;
};

}  // namespace ovik
