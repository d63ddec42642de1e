#include "tests/plain/plain_affinities.h"

#include <algorithm>
#include <cfloat>

namespace plain {

SparseRows uniform_similarities(const std::vector<double>& points,
                                std::size_t N,
                                std::size_t dims,
                                std::size_t K) {
    // The neighbours are the same whatever the perplexity.
    SparseRows rows = neighbour_similarities(points, N, dims, 2.0, K);
    for (auto& row : rows) {
        for (auto& entry : row) {
            entry.second = 1.0 / static_cast<double>(K);
        }
    }
    return rows;
}

SparseRows multiscale_similarities(const std::vector<double>& points,
                                   std::size_t N,
                                   std::size_t dims,
                                   const std::vector<double>& perplexities) {
    const auto neighbours = [=](double perplexity) {
        return std::min(static_cast<std::size_t>(3.0 * perplexity), N - 1);
    };
    const double largest = *std::max_element(perplexities.begin(), perplexities.end());
    SparseRows rows = uniform_similarities(points, N, dims, neighbours(largest));
    for (auto& row : rows) {
        for (auto& entry : row) {
            entry.second = 0.0;
        }
    }
    for (const double perplexity : perplexities) {
        const SparseRows scale =
            neighbour_similarities(points, N, dims, perplexity, neighbours(perplexity));
        for (std::size_t n = 0; n < N; ++n) {
            for (std::size_t m = 0; m < scale[n].size(); ++m) {
                rows[n][m].second += scale[n][m].second;
            }
        }
    }
    for (auto& row : rows) {
        for (auto& entry : row) {
            entry.second *= 1.0 / static_cast<double>(perplexities.size());
        }
    }
    return rows;
}

std::vector<double> dense_multiscale_similarities(const std::vector<double>& points,
                                                  std::size_t N,
                                                  std::size_t dims,
                                                  const std::vector<double>& perplexities) {
    std::vector<double> sum(N * N, 0.0);
    for (const double perplexity : perplexities) {
        const std::vector<double> scale = conditional_similarities(points, N, dims, perplexity);
        for (std::size_t i = 0; i < sum.size(); ++i) {
            sum[i] += scale[i];
        }
    }
    for (double& value : sum) {
        value *= 1.0 / static_cast<double>(perplexities.size());
    }
    return sum;
}

std::vector<double> dense_rows(const SparseRows& rows) {
    const std::size_t N = rows.size();
    std::vector<double> P(N * N, 0.0);
    for (std::size_t n = 0; n < N; ++n) {
        for (const auto& [column, value] : rows[n]) {
            P[n * N + column] = value;
        }
        P[n * N + n] = DBL_MIN;
    }
    return P;
}

}  // namespace plain
