#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "tests/support/sparse_rows.h"

/// Weighted graphs as dense matrices, and what is plainly computed of them.

namespace ovik::test {

/// Weights between nodes, symmetric, 0 where there is no edge.
using Weights = std::vector<std::vector<double>>;

inline SparseRows sparse_rows(const Weights& weights) {
    SparseRows rows{{0}, {}, {}};
    for (const std::vector<double>& row : weights) {
        for (std::size_t m = 0; m < row.size(); ++m) {
            if (row[m] != 0.0) {
                rows.col_P.push_back(static_cast<unsigned int>(m));
                rows.val_P.push_back(row[m]);
            }
        }
        rows.row_P.push_back(static_cast<unsigned int>(rows.col_P.size()));
    }
    return rows;
}

/// The modularity of a partition, pair by pair.
inline double plain_modularity(const Weights& weights,
                               std::span<const std::uint32_t> communities,
                               double resolution) {
    const std::size_t N = weights.size();
    std::vector<double> strengths(N);
    double total = 0.0;
    for (std::size_t i = 0; i < N; ++i) {
        for (std::size_t j = 0; j < N; ++j) {
            strengths[i] += weights[i][j];
            total += weights[i][j];
        }
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < N; ++i) {
        for (std::size_t j = 0; j < N; ++j) {
            if (communities[i] == communities[j]) {
                sum += weights[i][j] - resolution * strengths[i] * strengths[j] / total;
            }
        }
    }
    return sum / total;
}

/// Whether all members of a community can be reached from one of them within it.
inline bool is_connected(const Weights& weights,
                         std::span<const std::uint32_t> communities,
                         std::uint32_t community) {
    std::vector<char> is_reached(weights.size());
    std::vector<std::size_t> open;
    std::size_t members = 0;
    for (std::size_t n = 0; n < weights.size(); ++n) {
        if (communities[n] == community && members++ == 0) {
            is_reached[n] = 1;
            open.push_back(n);
        }
    }
    std::size_t reached = 0;
    while (!open.empty()) {
        const std::size_t n = open.back();
        open.pop_back();
        ++reached;
        for (std::size_t m = 0; m < weights.size(); ++m) {
            if (weights[n][m] > 0.0 && communities[m] == community && is_reached[m] == 0) {
                is_reached[m] = 1;
                open.push_back(m);
            }
        }
    }
    return reached == members;
}

/// A graph whose nodes are in groups, by node modulo their number: edges within a group are there
/// with one probability, those between groups with another, with random weights.
inline Weights planted_graph(
    std::size_t N, std::size_t groups, double within, double between, unsigned int seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> uniform;
    Weights weights(N, std::vector<double>(N));
    for (std::size_t i = 0; i < N; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            const double probability = i % groups == j % groups ? within : between;
            if (uniform(generator) < probability) {
                weights[i][j] = weights[j][i] = 0.5 + uniform(generator);
            }
        }
    }
    return weights;
}

}  // namespace ovik::test
