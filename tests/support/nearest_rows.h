#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
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

/// All others of a row, by a comparison with all: in the order of squared distance and row.
inline std::vector<std::uint32_t> order_of_others(const std::vector<double>& points,
                                                  std::size_t dims,
                                                  std::size_t row) {
    std::vector<double> squared;
    for (std::size_t n = 0; n < points.size() / dims; ++n) {
        double sum = 0.0;
        for (std::size_t d = 0; d < dims; ++d) {
            const double difference = points[n * dims + d] - points[row * dims + d];
            sum += difference * difference;
        }
        squared.push_back(sum);
    }
    std::vector<std::uint32_t> order(squared.size());
    std::iota(order.begin(), order.end(), 0U);
    order.erase(order.begin() + static_cast<std::ptrdiff_t>(row));
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        return squared[a] < squared[b];
    });
    return order;
}

}  // namespace ovik::test
