#pragma once

#include <ctime>
#include <string>

namespace ovik {

/// What gradient descent needs of a method: the joint affinities that it holds, and the gradient
/// and cost of an embedding against them, which are made of attractive forces, repulsive forces and
/// their normalisation. An embedding is row-major, N x output dimensions.
class Objective {
  public:
    Objective() = default;
    Objective(const Objective&) = delete;
    Objective& operator=(const Objective&) = delete;
    virtual ~Objective() = default;

    /// Multiplies the affinities (early exaggeration).
    virtual void exaggerate(double factor) = 0;

    /// Divides the affinities: the end of early exaggeration.
    virtual void endExaggeration(double factor) = 0;

    /// Sets by how much affinities count for more in the gradients to come: at a factor a, each is
    /// a * (attraction - repulsion / (a * Z)), with the attraction of the affinities as they stand
    /// and the normalisation Z. 1 at first. Costs do not depend on it.
    virtual void anneal(double factor) = 0;

    /// Writes the gradient at embedding Y, of the same shape.
    virtual void gradient(const double* Y, double* dY) = 0;

    /// The Kullback-Leibler divergence of embedding Y, against the affinities as they stand.
    [[nodiscard]] virtual double cost(const double* Y) = 0;

    /// What each point adds to the cost of embedding Y by its own row of the affinities.
    ///
    /// @param costs  N values, written; their sum is `cost` but for rounding
    virtual void rowCosts(const double* Y, double* costs) = 0;

    /// The misfit of each point in embedding Y (`stats/row_misfit.h`), whatever the affinities are
    /// multiplied by.
    ///
    /// @param similarity_sums  N values, as of `row_similarity_sums`
    /// @param misfits          N values, written
    virtual void rowMisfits(const double* Y, const double* similarity_sums, double* misfits) = 0;

    /// The cost at Y, and the gradient there, which the next iteration needs.
    virtual double costAndGradient(const double* Y, double* dY) = 0;

    /// The message that tells of the affinities once they are there.
    ///
    /// @param elapsed  processor time that they took
    [[nodiscard]] virtual std::string report(std::clock_t elapsed) const = 0;
};

}  // namespace ovik
