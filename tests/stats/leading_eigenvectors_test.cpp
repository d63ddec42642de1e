#include "stats/leading_eigenvectors.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

std::vector<double> symmetric(std::size_t n, unsigned int seed) {
    std::vector<double> matrix = test::random_values(n * n, seed);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            matrix[i * n + j] = matrix[j * n + i];
        }
    }
    return matrix;
}

/// Expects pairs of eigenvalue and eigenvector, of length 1 and at right angles, to some units in
/// the last place of the largest.
void expect_eigenvectors(const std::vector<double>& matrix,
                         std::size_t n,
                         const LeadingEigenvectors& found) {
    const std::size_t count = found.values.size();
    double scale = 0.0;
    for (const double value : matrix) {
        scale = std::max(scale, std::fabs(value) * static_cast<double>(n));
    }
    const double tolerance = 1e-14 * static_cast<double>(n);
    for (std::size_t c = 0; c < count; ++c) {
        for (std::size_t i = 0; i < n; ++i) {
            double product = 0.0;
            for (std::size_t j = 0; j < n; ++j) {
                product += matrix[i * n + j] * found.vectors[j * count + c];
            }
            ASSERT_NEAR(product, found.values[c] * found.vectors[i * count + c], tolerance * scale);
        }
        for (std::size_t other = 0; other < count; ++other) {
            double product = 0.0;
            for (std::size_t i = 0; i < n; ++i) {
                product += found.vectors[i * count + c] * found.vectors[i * count + other];
            }
            ASSERT_NEAR(product, c == other ? 1.0 : 0.0, tolerance);
        }
    }
    EXPECT_TRUE(std::is_sorted(found.values.rbegin(), found.values.rend()));
}

TEST(LeadingEigenvectors, AreEigenvectorsAtRightAngles) {
    for (const std::size_t n : {1U, 2U, 3U, 4U, 7U, 30U, 101U}) {
        const std::vector<double> matrix = symmetric(n, static_cast<unsigned int>(n));
        const LeadingEigenvectors all = leading_eigenvectors(matrix, n, n);
        expect_eigenvectors(matrix, n, all);
        const std::size_t few = (n + 2) / 3;
        const LeadingEigenvectors first = leading_eigenvectors(matrix, n, few);
        for (std::size_t c = 0; c < few; ++c) {
            EXPECT_EQ(first.values[c], all.values[c]);
            for (std::size_t i = 0; i < n; ++i) {
                EXPECT_EQ(first.vectors[i * few + c], all.vectors[i * n + c]);
            }
        }
    }
}

TEST(LeadingEigenvectors, AreTheSameForAnyNumberOfThreads) {
    constexpr std::size_t kSize = 400;
    const std::vector<double> matrix = symmetric(kSize, 5);
    const test::ThreadCount one(1);
    const LeadingEigenvectors expected = leading_eigenvectors(matrix, kSize, 20);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const LeadingEigenvectors found = leading_eigenvectors(matrix, kSize, 20);
        EXPECT_EQ(found.values, expected.values) << threads;
        EXPECT_EQ(found.vectors, expected.vectors) << threads;
    }
}

TEST(LeadingEigenvectors, OfEqualEigenvaluesSpanTheirSpace) {
    constexpr std::size_t kSize = 6;
    std::vector<double> matrix(kSize * kSize);
    for (std::size_t i = 0; i < kSize; ++i) {
        matrix[i * kSize + i] = 3.0;
    }
    const LeadingEigenvectors of_identity = leading_eigenvectors(matrix, kSize, kSize);
    EXPECT_EQ(of_identity.values, std::vector<double>(kSize, 3.0));
    expect_eigenvectors(matrix, kSize, of_identity);
    // All elements alike: one eigenvalue is their sum, the others are 0.
    matrix.assign(kSize * kSize, 0.5);
    const LeadingEigenvectors of_ones = leading_eigenvectors(matrix, kSize, kSize);
    EXPECT_NEAR(of_ones.values[0], 3.0, 1e-14);
    EXPECT_NEAR(of_ones.values[1], 0.0, 1e-14);
    expect_eigenvectors(matrix, kSize, of_ones);
}

TEST(LeadingEigenvectors, OfMatricesThatAreDiagonalAlreadyAreUnitVectors) {
    const LeadingEigenvectors found = leading_eigenvectors({1, 0, 0, 0, 5, 0, 0, 0, -7}, 3, 2);
    EXPECT_EQ(found.values, (std::vector<double>{5.0, 1.0}));
    for (const std::size_t i : {0U, 1U, 2U}) {
        EXPECT_EQ(std::fabs(found.vectors[i * 2]), i == 1 ? 1.0 : 0.0);
        EXPECT_EQ(std::fabs(found.vectors[i * 2 + 1]), i == 0 ? 1.0 : 0.0);
    }
    EXPECT_EQ(leading_eigenvectors(std::vector<double>(9), 3, 3).values, std::vector<double>(3));
}

TEST(LeadingEigenvectors, OfVeryDifferentSizesAreFound) {
    constexpr std::size_t kSize = 40;
    std::vector<double> matrix = symmetric(kSize, 9);
    for (std::size_t i = 0; i < kSize; ++i) {
        for (std::size_t j = 0; j < kSize; ++j) {
            matrix[i * kSize + j] *= std::pow(10.0, -2.0 * static_cast<double>(i + j));
        }
    }
    expect_eigenvectors(matrix, kSize, leading_eigenvectors(matrix, kSize, kSize));
}

TEST(LeadingEigenvectors, OfValuesThatAreNotFiniteDoNotExist) {
    for (const double value : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        EXPECT_THROW(leading_eigenvectors({1.0, value, value, 1.0}, 2, 1), std::domain_error);
    }
}

}  // namespace
}  // namespace ovik
