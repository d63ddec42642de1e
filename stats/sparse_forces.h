#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "stats/attraction.h"
#include "stats/rank_rows.h"
#include "stats/repulsion.h"
#include "util/malloc_array.h"

namespace ovik {

/// The t-SNE gradient and cost with attractive forces along the entries of a sparse matrix and any
/// repulsive forces, for one embedding after the other; after the first, nothing is allocated but
/// what a repulsion needs for a map that has grown.
///
/// Entry i of the gradient is a * (attraction[i] - repulsion[i] / (a * Z)), where every point's
/// term of the normalisation Z is added in point order, and a is 1 unless `anneal` has set it.
///
/// All functions take the attraction of N points, by their joint affinities, and an embedding `Y`,
/// row-major, N x dims. Several ranks call the same ones, and get the same.
class SparseForces {
  public:
    /// @throws WorkMemoryError if the forces do not fit in memory
    SparseForces(std::size_t N, std::size_t dims, std::unique_ptr<Repulsion> repulsion)
        : SparseForces(RankRows(N), dims, std::move(repulsion)) {}

    /// The same of several ranks, each with the forces on the points that it has.
    SparseForces(const RankRows& rows, std::size_t dims, std::unique_ptr<Repulsion> repulsion);

    /// Sets the factor by which attraction counts for more in the gradients to come.
    void anneal(double factor) { annealing_ = factor; }

    /// @param gradient  row-major, N x dims, written
    void gradient(Attraction& attraction, const double* Y, double* gradient);

    /// The cost of an embedding; 0.0 without points.
    [[nodiscard]] double cost(Attraction& attraction, const double* Y);

    /// What each point adds to the cost of an embedding.
    ///
    /// @param costs  N values, written
    void rowCosts(Attraction& attraction, const double* Y, double* costs);

    /// Both, in one computation of the repulsion and one pass over the entries; the same values.
    ///
    /// @param gradient  row-major, N x dims, written
    /// @return the cost
    double costAndGradient(Attraction& attraction, const double* Y, double* gradient);

  private:
    double computeForces(Attraction& attraction,
                         const double* Y,
                         double* attractive_forces,
                         bool with_cost);
    [[nodiscard]] double normalisation() const;
    void subtractRepulsion(double* gradient, double Z) const;

    RankRows rows_;
    std::size_t dims_;
    double annealing_ = 1.0;
    std::unique_ptr<Repulsion> repulsion_;
    MallocArray<double> repulsive_forces_;
    MallocArray<double> z_terms_;
};

}  // namespace ovik
