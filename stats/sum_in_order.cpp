#include "stats/sum_in_order.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ovik {

RoundingUnit::RoundingUnit(double sum)
    : binade_(sum > 0x1p-900 && sum < 0x1p900 ? std::ldexp(1.0, std::ilogb(sum)) : 0.0) {}

double sum_in_order(double start,
                    const double* values,
                    std::size_t count,
                    const PairKernels& kernels) {
    // Few blocks cross from one unit to the next, and those should be short.
    constexpr std::size_t kBlock = 256;
    double sum = start;
    for (std::size_t first = 0; first < count; first += kBlock) {
        const double* const block = values + first;
        const std::size_t length = std::min(kBlock, count - first);
        const RoundingUnit unit(sum);
        double rounded = 0.0;
        if (unit.exists() && kernels.rounded_sum(block, length, unit.shift(), &rounded) &&
            unit.holds(sum + rounded)) {
            sum += rounded;
        } else {
            sum = std::accumulate(block, block + length, sum);
        }
    }
    return sum;
}

}  // namespace ovik
