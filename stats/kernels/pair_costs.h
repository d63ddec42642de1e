#pragma once

#include "stats/kernels/pair_points.h"
#include "util/kernels/binary_logarithm.h"

namespace ovik::OVIK_KERNELS {

/// The costs of as many rows as there are lanes.
template <std::size_t Dims>
class RowCosts {
  public:
    /// @param offset  of the rows within the panel
    RowCosts(const EmbeddingColumns& Y, std::size_t panel, std::size_t offset, const CostTask& task)
        : Y_(Y),
          first_row_(panel + offset),
          P_(task.P + panel * Y.point_count + offset),
          memory_(task.costs + panel + offset),
          sum_(load(memory_)) {}

    /// Adds the pairs with the points whose bits are set; the lowest bit is that of `first`.
    void add(std::size_t first, std::uint64_t bits) {
        for (; bits != 0; bits &= bits - 1) {
            const std::size_t m = first + static_cast<std::size_t>(__builtin_ctzll(bits));
            const Lanes logarithm = binary_logarithm(Y_.reciprocalSimilarity(first_row_, m));
            sum_ += load(P_ + m * kPanelWidth) * logarithm;
        }
    }

    void halve() { sum_ *= 0.5; }

    void finish() { store(memory_, sum_); }

  private:
    Points<Dims> Y_;
    std::size_t first_row_;
    const double* P_;
    double* memory_;
    Lanes sum_;
};

/// The costs of the rows of a panel, of which `panel` is the first.
template <std::size_t Dims>
void add_panel_costs(const EmbeddingColumns& Y,
                     std::size_t panel,
                     const PairBlock& block,
                     const CostTask& task) {
    const std::size_t N = Y.point_count;
    const std::uint64_t* const words = task.significant + panel / kPanelWidth * words_per_panel(N);
    const std::size_t end = block.end_column < N ? block.end_column : N;
    for (std::size_t offset = 0; offset < kPanelWidth && panel + offset < N; offset += kLanes) {
        RowCosts<Dims> rows(Y, panel, offset, task);
        std::size_t first = block.first_column;
        if (first <= panel) {
            // The first columns of the rows are those of the own panel, where each pair comes
            // twice.
            first = panel / kColumnsPerWord * kColumnsPerWord;
            const std::uint64_t own = std::uint64_t{0xFF} << (panel - first);
            const std::uint64_t word = words[first / kColumnsPerWord];
            rows.add(first, word & own);
            rows.halve();
            rows.add(first, word & ~own);
            first += kColumnsPerWord;
        }
        for (; first < end; first += kColumnsPerWord) {
            rows.add(first, words[first / kColumnsPerWord]);
        }
        rows.finish();
    }
}

template <std::size_t Dims>
void add_costs(const EmbeddingColumns& Y, const PairBlock& block, const CostTask& task) {
    for (std::size_t panel = block.first_row;
         panel < block.end_row && panel < block.end_column && panel < Y.point_count;
         panel += kPanelWidth) {
        add_panel_costs<Dims>(Y, panel, block, task);
    }
}

}  // namespace ovik::OVIK_KERNELS
