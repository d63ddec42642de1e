#pragma once

#include <cstddef>

#include "stats/kernels/pair_kernels.h"

namespace ovik {

/// What a running sum allows to be added to it in any order.
///
/// While a sum of doubles stays in [2^k, 2^(k+1)), it is a multiple of the unit 2^(k-52), and
/// adding x gives the same as adding x rounded to that unit: x decides alone how the result is
/// rounded, unless it lies midway between two multiples. Rounded addends add up without any error,
/// so their order is of no matter.
class RoundingUnit {
  public:
    /// The unit of a running sum; none if it is not positive or near the ends of the range.
    explicit RoundingUnit(double sum);

    [[nodiscard]] bool exists() const { return binade_ > 0.0; }

    /// The power of two, 2^k, from which the running sum counts.
    [[nodiscard]] double binade() const { return binade_; }

    /// 1.5 * 2^k: a number of less than 2^(k-1) is rounded to the unit when this is added and
    /// subtracted again.
    [[nodiscard]] double shift() const { return 1.5 * binade_; }

    [[nodiscard]] double half() const { return 0x1p-53 * binade_; }

    /// Whether `total` is of this unit.
    [[nodiscard]] bool holds(double total) const {
        return total >= binade_ && total < 2.0 * binade_;
    }

  private:
    double binade_;
};

/// The sum of `start` and the values one after the other: that of a plain loop bit for bit.
///
/// Blocks of values are rounded to the unit of the running sum and added side by side; a block
/// takes the plain loop where that is not the same.
double sum_in_order(double start,
                    const double* values,
                    std::size_t count,
                    const PairKernels& kernels = pair_kernels(instruction_set()));

}  // namespace ovik
