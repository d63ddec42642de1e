#include "stats/sparse_components.h"

#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/centring.h"

#include "tests/plain/plain_sparse_components.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::DoubleNear;
using testing::Pointwise;

/// Counts of cells of a few kinds: a tenth of the values is not 0.
std::vector<double> counts(std::size_t rows, std::size_t columns) {
    std::vector<double> values(rows * columns, 0.0);
    std::uint64_t state = 1;
    for (std::size_t n = 0; n < rows; ++n) {
        for (std::size_t d = 0; d < columns; ++d) {
            state = state * 6364136223846793005U + 1442695040888963407U;
            const std::uint64_t drawn = state >> 40U;
            const bool is_marker = d % 5 == n % 5 && d < columns / 2;
            if (drawn % 100 < (is_marker ? 60U : 8U)) {
                values[n * columns + d] = std::sqrt(1.0 + static_cast<double>(drawn % 7));
            }
        }
    }
    return values;
}

SparseRows sparse(const std::vector<double>& values, std::size_t rows, std::size_t columns) {
    SparseRows matrix{rows, columns, {0}, {}, {}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i] != 0.0) {
            matrix.column_of.push_back(static_cast<std::uint32_t>(i % columns));
            matrix.values.push_back(values[i]);
        }
        if ((i + 1) % columns == 0) {
            matrix.starts.push_back(matrix.values.size());
        }
    }
    return matrix;
}

struct Shape {
    std::size_t rows;
    std::size_t columns;
    std::size_t count;
};

TEST(SparseComponents, EqualThePlainProgramBitForBit) {
    for (const Shape& shape : {Shape{700, 300, 5}, {20, 300, 12}, {300, 7, 3}, {600, 1300, 2}}) {
        const std::vector<double> values = counts(shape.rows, shape.columns);
        std::vector<plain::Entry> entries;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (values[i] != 0.0) {
                entries.push_back({i / shape.columns, i % shape.columns, values[i]});
            }
        }
        const plain::Components expected =
            plain::sparse_principal_components(entries, shape.rows, shape.columns, shape.count);
        const SparseRows matrix = sparse(values, shape.rows, shape.columns);
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            const PrincipalComponents found = sparse_components(matrix, shape.count).components;
            EXPECT_EQ(found.variances, expected.variances) << shape.columns << ", " << threads;
            EXPECT_EQ(found.loadings, expected.loadings) << shape.columns << ", " << threads;
            EXPECT_EQ(found.scores, expected.scores) << shape.columns << ", " << threads;
        }
    }
}

TEST(SparseComponents, AreThoseOfTheCentredDenseMatrix) {
    for (const Shape& shape : {Shape{900, 120, 6}, {60, 400, 4}, {50, 30, 20}}) {
        std::vector<double> values = counts(shape.rows, shape.columns);
        const SparseComponents found =
            sparse_components(sparse(values, shape.rows, shape.columns), shape.count);
        zero_mean(values.data(), shape.rows, shape.columns);
        const PrincipalComponents expected =
            principal_components({values.data(), shape.rows, shape.columns}, shape.count);
        // Eigenvalues are as exact as the square of the residual, directions as the residual
        // itself, divided by their distance from the next.
        EXPECT_LE(found.residual, kComponentTolerance);
        const double scale = expected.variances[0];
        EXPECT_THAT(found.components.variances,
                    Pointwise(DoubleNear(1e-11 * scale), expected.variances));
        EXPECT_NEAR(found.components.total_variance, expected.total_variance, 1e-10);
        EXPECT_NEAR(found.components.varianceKept(), expected.varianceKept(), 1e-10);
        EXPECT_THAT(found.components.scores, Pointwise(DoubleNear(1e-3), expected.scores));
        EXPECT_EQ(found.components.varying, shape.count);
    }
}

TEST(SparseComponents, ScoresAreOrthogonalAndHaveTheirVariances) {
    const SparseRows matrix = sparse(counts(400, 500), 400, 500);
    const PrincipalComponents found = sparse_components(matrix, 6).components;
    for (std::size_t a = 0; a < 6; ++a) {
        for (std::size_t b = 0; b <= a; ++b) {
            double product = 0.0;
            for (std::size_t n = 0; n < 400; ++n) {
                product += found.scores[n * 6 + a] * found.scores[n * 6 + b];
            }
            EXPECT_NEAR(product / 399.0, a == b ? found.variances[a] : 0.0, 1e-6);
        }
    }
}

TEST(SparseComponents, WhereRowsVaryAlongFewTheOthersAreZero) {
    // Rows along two directions, among 40 columns.
    std::vector<double> values(30 * 40, 0.0);
    for (std::size_t n = 0; n < 30; ++n) {
        values[n * 40 + 3] = static_cast<double>(n % 7);
        values[n * 40 + 9] = static_cast<double>(n % 3);
    }
    const SparseComponents found = sparse_components(sparse(values, 30, 40), 5);
    EXPECT_EQ(found.components.varying, 2U);
    EXPECT_EQ(found.components.variances[2], 0.0);
    EXPECT_EQ(found.components.scores[2], 0.0);
    EXPECT_NEAR(found.components.varianceKept(), 1.0, 1e-12);
}

TEST(SparseComponents, TellHowFarTheyAre) {
    std::vector<std::size_t> steps;
    const SparseComponents found = sparse_components(
        sparse(counts(300, 200), 300, 200), 3, [&](std::size_t directions, std::size_t most) {
            EXPECT_EQ(most, most_directions(3));
            steps.push_back(directions);
        });
    ASSERT_FALSE(steps.empty());
    EXPECT_EQ(steps.front(), 16U);
    EXPECT_EQ(steps.back(), found.directions);
}

}  // namespace
}  // namespace ovik
