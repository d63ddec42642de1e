#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ovik::bench {

/// Points around twenty centres, the same on every machine: sums of uniform numbers from a linear
/// congruential generator, without the library's distributions.
///
/// @return row-major, N x dims
inline std::vector<double> clustered_points(std::size_t N, std::size_t dims) {
    constexpr std::size_t kCentres = 20;
    std::uint64_t state = 2026;
    const auto bell = [&state] {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            sum += static_cast<double>(state >> 11U) / 9007199254740992.0;
        }
        return sum;
    };
    std::vector<double> centres(kCentres * dims);
    for (double& value : centres) {
        value = 4.0 * bell();
    }
    std::vector<double> points(N * dims);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] = centres[i / dims % kCentres * dims + i % dims] + bell();
    }
    return points;
}

}  // namespace ovik::bench
