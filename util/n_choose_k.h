#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>

namespace ovik {

/// The binomial coefficient: in how many ways `k` of `n` things can be chosen.
///
/// @return 0 if `k` > `n`; 1 if `k` is 0
/// @throws std::overflow_error if the result does not fit in `unsigned int`
inline unsigned int n_choose_k(unsigned int n, unsigned int k) {
    if (k > n) {
        return 0;
    }
    k = std::min(k, n - k);
    std::uint64_t ways = 1;
    for (std::uint64_t i = 1; i <= k; ++i) {
        // Exact: the product of i consecutive numbers is divisible by i!.
        ways = ways * (n - k + i) / i;
        if (ways > std::numeric_limits<unsigned int>::max()) {
            throw std::overflow_error("n_choose_k: the result exceeds unsigned int");
        }
    }
    return static_cast<unsigned int>(ways);
}

}  // namespace ovik
