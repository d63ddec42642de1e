#pragma once

#include <cstddef>

#include "stats/sum_in_order.h"
#include "util/parallel.h"

/// Operations on every element of an array, spread over the cores.

namespace ovik {

/// Fewest elements for which another thread pays.
constexpr std::size_t kElementwiseGrain = 2048;

inline void multiply_all(double* values, std::size_t count, double factor) {
    parallel_for_each(
        count, kElementwiseGrain, [=](std::size_t i) { values[i] = values[i] * factor; });
}

inline void divide_all(double* values, std::size_t count, double divisor) {
    parallel_for_each(
        count, kElementwiseGrain, [=](std::size_t i) { values[i] = values[i] / divisor; });
}

/// Divides every element by the sum of all, which is formed in index order.
inline void divide_by_sum(double* values, std::size_t count) {
    divide_all(values, count, sum_in_order(0.0, values, count));
}

}  // namespace ovik
