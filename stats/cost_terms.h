#pragma once

#include <cstddef>
#include <cstdint>

#include "stats/kernels/pair_kernels.h"
#include "util/malloc_array.h"

namespace ovik {

/// What the cost of every embedding needs of the joint affinities P, found once.
///
/// Sum p log(p / Q), with Q = q / sum_Q and q = 1 / (1 + squared distance), is sum p log p + sum p
/// log(1 + squared distance) + log sum_Q * sum p. Where p is below 2^-60 of the mean of P it is no
/// part of the second sum: for all similarities of `EmbeddingColumns`, none above 2^210, all such
/// pairs together are less than 2^-52 times the sum of P.
class CostTerms {
  public:
    /// Throws WorkMemoryError if the arrays, a bit for eight
    /// pairs, do not fit in memory.
    explicit CostTerms(std::size_t point_count,
                       const PairKernels& kernels = pair_kernels(instruction_set()));

    /// @param P  point_count x point_count, symmetric, finite, by panels, the diagonal 0
    void take(const double* P);

    /// The sum of P.
    [[nodiscard]] double sum() const { return sum_; }

    /// The sum of p log p; the logarithm of 0 counts as 0.
    [[nodiscard]] double entropy() const { return entropy_; }

    /// As `CostTask::significant`.
    [[nodiscard]] const std::uint64_t* significant() const { return significant_.get(); }

  private:
    void sumPanel(std::size_t panel, const double* P);
    void markPanel(std::size_t panel, const double* P, double least);

    const PairKernels& kernels_;
    std::size_t point_count_;
    double sum_ = 0.0;
    double entropy_ = 0.0;
    MallocArray<double> panel_sums_;
    MallocArray<double> panel_entropies_;
    MallocArray<std::uint64_t> significant_;
};

}  // namespace ovik
