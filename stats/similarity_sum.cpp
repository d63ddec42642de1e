#include "stats/similarity_sum.h"

#include <algorithm>

#include "stats/panels.h"
#include "stats/sum_in_order.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// The smallest unit that rounds a similarity of 1.
constexpr double kSmallestShift = 6.0;
constexpr double kSmallestBinade = 4.0;

}  // namespace

SimilaritySum::SimilaritySum(std::size_t point_count, const PairKernels& kernels)
    : kernels_(kernels),
      point_count_(point_count),
      padded_count_(padded_to_panels(point_count)),
      worker_count_(panel_worker_count(point_count)),
      shifts_(malloc_array<double>(padded_count_)),
      half_units_(malloc_array<double>(padded_count_)),
      row_sums_(malloc_array<double>(worker_count_ * padded_count_)),
      row_ties_(malloc_array<bool>(worker_count_ * padded_count_)),
      row_(malloc_array<double>(padded_count_)) {
    require_allocated(shifts_, half_units_, row_sums_, row_ties_, row_);
    std::fill_n(shifts_.get(), padded_count_, kSmallestShift);
    std::fill_n(half_units_.get(), padded_count_, RoundingUnit(kSmallestBinade).half());
}

void SimilaritySum::addRoundedRows(const EmbeddingColumns& Y) {
    const RowRounding rounding = {shifts_.get(), half_units_.get()};
    PanelQueue panels(point_count_);
    parallel_for_each(worker_count_, 1, [&](std::size_t worker) {
        const RoundedRowSums sums = {row_sums_.get() + worker * padded_count_,
                                     row_ties_.get() + worker * padded_count_};
        std::fill_n(sums.sum, padded_count_, 0.0);
        std::fill_n(sums.tie, padded_count_, false);
        panels.work([&](std::size_t panel) {
            kernels_.add_rounded_similarities(Y, panel, rounding, sums);
        });
    });
}

/// The sum of a row's rounded similarities, exact if it can be used.
double SimilaritySum::roundedRow(std::size_t n) const {
    double sum = 0.0;
    for (std::size_t worker = 0; worker < worker_count_; ++worker) {
        sum += row_sums_[worker * padded_count_ + n];
    }
    return sum;
}

bool SimilaritySum::hasTie(std::size_t n) const {
    bool tie = false;
    for (std::size_t worker = 0; worker < worker_count_; ++worker) {
        tie = tie || row_ties_[worker * padded_count_ + n];
    }
    return tie;
}

double SimilaritySum::operator()(const EmbeddingColumns& Y) {
    addRoundedRows(Y);
    double sum = 0.0;
    for (std::size_t n = 0; n < point_count_; ++n) {
        const RoundingUnit unit(sum);
        const double rounded = roundedRow(n);
        // A row whose exact sum is too large for its unit also has a computed one that is.
        if (shifts_[n] == unit.shift() && unit.holds(sum + rounded) && !hasTie(n)) {
            sum += rounded;
            continue;
        }
        if (unit.shift() >= kSmallestShift) {
            shifts_[n] = unit.shift();
            half_units_[n] = unit.half();
        }
        kernels_.similarities(Y, n, row_.get());
        sum = sum_in_order(sum, row_.get(), point_count_, kernels_);
    }
    return sum;
}

}  // namespace ovik
