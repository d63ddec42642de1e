#pragma once

#include <cstddef>

#include "stats/attraction.h"
#include "stats/kernels/slice_pass.h"
#include "stats/sliced_matrix.h"
#include "util/elementary.h"
#include "util/malloc_array.h"

namespace ovik {

/// Attraction along a matrix in slices, for one embedding after the other; after the construction,
/// nothing is allocated.
///
/// The cost is the sum of p * log(p + DBL_MIN), which is the same for all embeddings, that of
/// p * log(1 + squared distance), and log(Z) times that of p: within 2e-12 times the sum of p.
/// Where a guard may matter, it is formed entry by entry.
class SlicedAttraction : public Attraction {
  public:
    /// @param dims  of the embeddings
    /// @param log   the logarithm of what the vector kernels leave
    /// @throws WorkMemoryError
    SlicedAttraction(SlicedMatrix P, std::size_t dims, RealFunction log);

    [[nodiscard]] SlicedMatrix& matrix() { return P_; }

    [[nodiscard]] const SlicedMatrix& matrix() const { return P_; }

    void prepare(const double* Y) override;
    void pass(const double* Y, IndexRange rows, double* forces, bool with_cost) override;
    [[nodiscard]] double cost(const double* Y, double Z) override;
    void rowCosts(const double* Y, double Z, double* costs) override;
    void rowMisfits(const double* Y, const double* similarity_sums, double* misfits) override;

  private:
    /// The embedding in the order in which the rows of the matrix lie.
    [[nodiscard]] const double* inOrder(const double* Y) const {
        return points_ != nullptr ? points_.get() : Y;
    }

    template <typename Visit>
    void forEachEntry(const double* Y,
                      const double* points,
                      std::size_t row,
                      const Visit& visit) const;
    [[nodiscard]] double plainCost(const double* Y, double Z) const;
    void addEntries(const double* Y, double Z, std::size_t row, double& cost) const;

    SlicedMatrix P_;
    std::size_t dims_;
    RealFunction log_;
    SliceKernels kernels_;
    /// Of each row of the slices.
    MallocArray<double> log_sums_;
    /// Null if the rows lie in their own order.
    MallocArray<double> points_;
};

}  // namespace ovik
