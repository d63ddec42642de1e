#pragma once

#include <cstddef>

#include "stats/cost_terms.h"
#include "stats/kernels/pair_kernels.h"
#include "stats/pair_blocks.h"
#include "stats/similarity_sum.h"
#include "util/elementary.h"
#include "util/malloc_array.h"

namespace ovik {

/// The gradient and cost of `exact_gradient` and `exact_cost` for symmetric joint affinities P and
/// an embedding that changes from one iteration to the next; several times as fast.
///
/// The gradient is that of `exact_gradient` bit for bit, though each pair is computed once. The
/// cost agrees with `exact_cost` to about 2e-13 times the sum of P: it adds up in another order,
/// and its logarithms are shorter. Both are the same for any number of threads and on any
/// processor.
class SymmetricForces {
  public:
    /// For at least 2 points in at least 1 dimension. Throws WorkMemoryError
    /// if the arrays, O(point_count), do not fit in memory.
    ///
    /// @param log  the logarithm of what the vector kernels leave
    SymmetricForces(std::size_t point_count,
                    std::size_t dims,
                    RealFunction log,
                    const PairKernels& kernels = pair_kernels(instruction_set()));

    /// Takes affinities for the calls below, which they have to outlive.
    ///
    /// @param P         symmetric, finite, by panels (see `rows_to_panels`); the diagonal is 0
    /// @param diagonal  the diagonal of P, point_count values
    void takeAffinities(const double* P, const double* diagonal);

    /// Takes over an embedding, row-major, point_count x dims, for the calls below.
    ///
    /// @return whether that could be done: whether all coordinates are finite, and not larger than
    /// `kLargestCoordinate`
    [[nodiscard]] bool take(const double* Y);

    /// Sets the factor of the affinities in the gradients to come, as `exact_gradient` has it.
    void anneal(double factor) { annealing_ = factor; }

    /// @param gradient  row-major, point_count x dims, written
    void gradient(double* gradient);

    /// @param gradient  written as well, unless it is null
    double cost(double* gradient);

  private:
    template <typename Body>
    void forBlocks(const Body& body);
    [[nodiscard]] double totalCost(double sum_Q) const;
    [[nodiscard]] EmbeddingColumns columns() const;
    void copyGradient(double* gradient) const;

    RealFunction log_;
    const PairKernels& kernels_;
    std::size_t point_count_;
    std::size_t dims_;
    std::size_t worker_count_;
    SimilaritySum similarity_sum_;
    PairBlocks blocks_;
    CostTerms cost_terms_;
    double annealing_ = 1.0;
    const double* P_ = nullptr;
    const double* diagonal_ = nullptr;
    MallocArray<double> coordinates_;
    MallocArray<double> forces_;
    MallocArray<double> costs_;
};

}  // namespace ovik
