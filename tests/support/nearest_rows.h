#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "neighbours/metric.h"
#include "neighbours/near_row.h"

namespace ovik::test {

/// The nearest others of a row, by a comparison with all: in the order of distance and row.
inline std::vector<NearRow> nearest_of(const std::vector<double>& points,
                                       std::size_t dims,
                                       std::size_t row,
                                       std::size_t count) {
    std::vector<NearRow> all;
    for (std::size_t n = 0; n < points.size() / dims; ++n) {
        if (n != row) {
            all.push_back({static_cast<std::uint32_t>(n),
                           euclidean_metric().distance(
                               points.data() + row * dims, points.data() + n * dims, dims)});
        }
    }
    const std::size_t end = std::min(count, all.size());
    std::partial_sort(
        all.begin(), all.begin() + static_cast<std::ptrdiff_t>(end), all.end(), is_nearer);
    all.resize(end);
    return all;
}

}  // namespace ovik::test
