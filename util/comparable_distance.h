#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace ovik {

/// How many times as large as the distances of nearest neighbours a distance may be. All are scaled
/// by the largest, and the search for a bandwidth ends before distances that are some 1e28 times
/// smaller can be told apart; what rounding leaves of a distance of 0, 1e-16 of the others, stays
/// far from it.
constexpr double kDistanceRange = 1e20;

/// The largest distance beside which those between neighbours count: `kDistanceRange` times the
/// median (of an even number the upper one) of the distances of rows from their nearest.
///
/// @param nearest  of each row the smallest distance above 0; those of rows without one are
///                 infinite
/// @return infinite if that of each row is
inline double largest_comparable_distance(std::vector<double> nearest) {
    std::erase(nearest, std::numeric_limits<double>::infinity());
    if (nearest.empty()) {
        return std::numeric_limits<double>::infinity();
    }
    const auto median = nearest.begin() + static_cast<std::ptrdiff_t>(nearest.size() / 2);
    std::nth_element(nearest.begin(), median, nearest.end());
    return kDistanceRange * *median;
}

}  // namespace ovik
