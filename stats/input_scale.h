#pragma once

#include <vector>

namespace ovik {

/// What a matrix was before it was centred and scaled: value = mean of its column + scaled value /
/// factor, but for rounding.
struct InputScale {
    /// The mean of each column.
    std::vector<double> means;
    /// 1 / largest absolute deviation from the means.
    double factor = 1.0;
};

}  // namespace ovik
