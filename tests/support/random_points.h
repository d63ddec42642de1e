#pragma once

#include <cstddef>
#include <random>
#include <vector>

namespace ovik::test {

/// `count` values from a normal distribution; the same for the same seed.
inline std::vector<double> random_values(std::size_t count, unsigned int seed, double scale = 1.0) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal(0.0, scale);
    std::vector<double> values(count);
    for (double& value : values) {
        value = normal(generator);
    }
    return values;
}

}  // namespace ovik::test
