#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace ovik {

/// The middle one of some values, or the mean of the two in the middle.
///
/// @param values  at least one, no NaN; sorted
inline double median(std::vector<double>& values) {
    std::sort(values.begin(), values.end());
    const std::size_t upper = values.size() / 2;
    const std::size_t lower = (values.size() - 1) / 2;
    return lower == upper ? values[upper] : (values[lower] + values[upper]) / 2.0;
}

}  // namespace ovik
