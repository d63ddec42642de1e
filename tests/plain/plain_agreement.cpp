#include "tests/plain/plain_agreement.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tests/plain/plain_tsne.h"

namespace plain {

namespace {

void scale_to_one(std::vector<double>& map) {
    centre_columns(map, map.size() / 2, 2);
    double squares = 0.0;
    for (const double value : map) {
        squares += value * value;
    }
    for (double& value : map) {
        value /= std::sqrt(squares);
    }
}

}  // namespace

double plane_disparity(std::vector<double> A, std::vector<double> B) {
    scale_to_one(A);
    scale_to_one(B);
    double m[2][2] = {};
    for (std::size_t n = 0; n < A.size(); n += 2) {
        for (std::size_t i = 0; i < 2; ++i) {
            for (std::size_t j = 0; j < 2; ++j) {
                m[i][j] += A[n + i] * B[n + j];
            }
        }
    }
    const double squares =
        m[0][0] * m[0][0] + m[0][1] * m[0][1] + m[1][0] * m[1][0] + m[1][1] * m[1][1];
    const double determinant = m[0][0] * m[1][1] - m[0][1] * m[1][0];
    // (s1 + s2)^2 = s1^2 + s2^2 + 2 s1 s2
    return 1.0 - (squares + 2.0 * std::abs(determinant));
}

double shared_neighbours(const std::vector<double>& A,
                         const std::vector<double>& B,
                         std::size_t dims,
                         std::size_t K) {
    const std::size_t N = A.size() / dims;
    const std::vector<double> of_A = squared_distances(A, N, dims);
    const std::vector<double> of_B = squared_distances(B, N, dims);
    const auto nearest = [=](const std::vector<double>& distances, std::size_t n) {
        std::vector<std::pair<double, std::size_t>> others;
        for (std::size_t m = 0; m < N; ++m) {
            if (m != n) {
                others.emplace_back(distances[n * N + m], m);
            }
        }
        std::sort(others.begin(), others.end());
        others.resize(K);
        return others;
    };
    std::size_t shared = 0;
    for (std::size_t n = 0; n < N; ++n) {
        for (const auto& a : nearest(of_A, n)) {
            for (const auto& b : nearest(of_B, n)) {
                shared += a.second == b.second ? 1 : 0;
            }
        }
    }
    return static_cast<double>(shared) / static_cast<double>(N * K);
}

}  // namespace plain
