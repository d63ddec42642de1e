#include "stats/cost_terms.h"

#include <algorithm>
#include <numeric>

#include "stats/panels.h"
#include "util/parallel.h"

namespace ovik {

CostTerms::CostTerms(std::size_t point_count, const PairKernels& kernels)
    : kernels_(kernels),
      point_count_(point_count),
      panel_sums_(malloc_array<double>(panel_count(point_count))),
      panel_entropies_(malloc_array<double>(panel_count(point_count))),
      significant_(
          malloc_array<std::uint64_t>(panel_count(point_count) * words_per_panel(point_count))) {
    require_allocated(panel_sums_, panel_entropies_, significant_);
}

void CostTerms::take(const double* P) {
    const std::size_t panels = panel_count(point_count_);
    const std::size_t panel_size = kPanelWidth * point_count_;
    parallel_for_each(panels, kPanelGrain, [=, this](std::size_t panel) {
        sumPanel(panel, P + panel * panel_size);
    });
    sum_ = std::accumulate(panel_sums_.get(), panel_sums_.get() + panels, 0.0);
    entropy_ = std::accumulate(panel_entropies_.get(), panel_entropies_.get() + panels, 0.0);
    const auto count = static_cast<double>(point_count_);
    const double least = 0x1p-60 * sum_ / (count * count);
    parallel_for_each(panels, kPanelGrain, [=, this](std::size_t panel) {
        markPanel(panel, P + panel * panel_size, least);
    });
}

void CostTerms::sumPanel(std::size_t panel, const double* P) {
    constexpr std::size_t kBlock = 512;
    double logarithms[kBlock];
    double sum = 0.0;
    double entropy = 0.0;
    const std::size_t size = kPanelWidth * point_count_;
    for (std::size_t first = 0; first < size; first += kBlock) {
        const double* const block = P + first;
        const std::size_t length = std::min(kBlock, size - first);
        kernels_.logarithms(block, length, logarithms);
        sum = std::accumulate(block, block + length, sum);
        entropy = std::inner_product(block, block + length, logarithms, entropy);
    }
    panel_sums_[panel] = sum;
    panel_entropies_[panel] = entropy;
}

void CostTerms::markPanel(std::size_t panel, const double* P, double least) {
    const std::size_t words = words_per_panel(point_count_);
    std::uint64_t* const marks = significant_.get() + panel * words;
    std::fill_n(marks, words, 0);
    for (std::size_t m = panel * kPanelWidth; m < point_count_; ++m) {
        const double* const column = P + m * kPanelWidth;
        if (*std::max_element(column, column + kPanelWidth) >= least) {
            marks[m / kColumnsPerWord] |= std::uint64_t{1} << (m % kColumnsPerWord);
        }
    }
}

}  // namespace ovik
