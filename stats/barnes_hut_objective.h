#pragma once

#include <cstddef>
#include <optional>

#include "stats/barnes_hut_forces.h"
#include "stats/objective.h"
#include "stats/sparse_matrix.h"

namespace ovik {

class CachedNeighbours;

/// How many neighbours of each of N rows the Barnes-Hut method takes: 3 * perplexity (truncated),
/// or the N - 1 that there are if it asks for more.
int neighbour_count(double perplexity, std::size_t N);

/// The Barnes-Hut method: similarities to the nearest neighbours, approximate repulsive forces.
class BarnesHutObjective : public Objective {
  public:
    /// Computes the joint similarities of the rows of X, which sum to 1, from the
    /// `neighbour_count` nearest neighbours of each.
    /// Failures as for `neighbour_affinities` and `symmetrized`.
    ///
    /// @param X         row-major, N x D; read here only
    /// @param out_dims  dimensions of the embedding
    /// @param theta     accuracy; see `SPTree`
    /// @param kept      null, or neighbours from other runs over the same X
    BarnesHutObjective(const double* X,
                       std::size_t N,
                       std::size_t D,
                       std::size_t out_dims,
                       double perplexity,
                       double theta,
                       CachedNeighbours* kept = nullptr);

    void exaggerate(double factor) override;
    void relax(double factor) override;
    void gradient(const double* Y, double* dY) override;
    [[nodiscard]] double cost(const double* Y) override;
    double costAndGradient(const double* Y, double* dY) override;

    /// Gives the density of the similarity matrix and fractions of a second.
    [[nodiscard]] std::string report(std::clock_t elapsed) const override;

  private:
    [[nodiscard]] std::size_t entryCount() const { return P_.row_P[N_]; }

    std::size_t N_;
    double theta_;
    SparseMatrix P_;
    /// Made once the similarities are there, which need the memory first.
    std::optional<BarnesHutForces> forces_;
};

}  // namespace ovik
