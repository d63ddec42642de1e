#pragma once

#include <cstddef>

#include "stats/kernels/pair_kernels.h"
#include "util/malloc_array.h"

namespace ovik {

/// The sum of the similarities 1 / (1 + squared distance) of all pairs of different points of an
/// embedding: bit for bit that of a plain loop that goes row after row.
///
/// The rows are rounded to the unit of the running sum (see `RoundingUnit`) and added in parallel,
/// each similarity once for both of its rows. Each row takes the unit that the running sum had
/// there in the last call. A row whose unit has changed since, or that cannot be added as a whole,
/// is added once more by `sum_in_order`. The last call decides how long this one takes, never its
/// result.
class SimilaritySum {
  public:
    /// For embeddings of `point_count` points. Throws WorkMemoryError if
    /// the arrays, O(point_count) per thread, do not fit in memory.
    explicit SimilaritySum(std::size_t point_count,
                           const PairKernels& kernels = pair_kernels(instruction_set()));

    /// The sum for an embedding of the number of points that the constructor got.
    double operator()(const EmbeddingColumns& Y);

  private:
    void addRoundedRows(const EmbeddingColumns& Y);
    [[nodiscard]] double roundedRow(std::size_t n) const;
    [[nodiscard]] bool hasTie(std::size_t n) const;

    const PairKernels& kernels_;
    std::size_t point_count_;
    std::size_t padded_count_;
    /// Each worker has sums and ties of its own for all rows. The sums are exact, whichever worker
    /// adds which similarity.
    std::size_t worker_count_;
    MallocArray<double> shifts_;
    MallocArray<double> half_units_;
    MallocArray<double> row_sums_;
    MallocArray<bool> row_ties_;
    MallocArray<double> row_;
};

}  // namespace ovik
