#pragma once

#include <cstddef>

#include "stats/kernels/pair_kernels.h"
#include "util/malloc_array.h"

namespace ovik {

/// The sum of the similarities 1 / (1 + squared distance) of all pairs of different points of an
/// embedding, which is to be that of a plain loop, row after row, bit for bit.
///
/// The rows are rounded to the unit of the running sum (see `RoundingUnit`) and added in parallel,
/// each similarity once for both of its rows. The unit is that which the running sum had at the row
/// the last time: where it has moved on, or the row cannot be added as a whole, the row is done
/// again. What was there the last time decides how long it takes, never the result.
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
    /// Each has sums and ties of its own for all rows; exact, whoever adds which.
    std::size_t worker_count_;
    MallocArray<double> shifts_;
    MallocArray<double> half_units_;
    MallocArray<double> row_sums_;
    MallocArray<bool> row_ties_;
    MallocArray<double> row_;
};

}  // namespace ovik
