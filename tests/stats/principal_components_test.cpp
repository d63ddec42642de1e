#include "stats/principal_components.h"

#include <cmath>
#include <numeric>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/centring.h"

#include "tests/plain/plain_components.h"
#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;
using testing::Pointwise;

/// Correlated columns, centred.
std::vector<double> centred_values(std::size_t rows, std::size_t columns, unsigned int seed) {
    std::vector<double> values = test::random_values(rows * columns, seed);
    for (std::size_t n = 0; n < rows; ++n) {
        for (std::size_t d = 1; d < columns; ++d) {
            values[n * columns + d] += 0.7 * values[n * columns + d - 1];
        }
    }
    zero_mean(values.data(), rows, columns);
    return values;
}

struct Shape {
    std::size_t rows;
    std::size_t columns;
    std::size_t count;
};

void expect_plain_components(const std::vector<double>& values, const Shape& shape) {
    const plain::Components expected =
        plain::principal_components(values, shape.rows, shape.columns, shape.count);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const PrincipalComponents found =
            principal_components({values.data(), shape.rows, shape.columns}, shape.count);
        EXPECT_EQ(found.loadings, expected.loadings) << shape.rows << ", " << threads;
        EXPECT_EQ(found.scores, expected.scores) << shape.rows << ", " << threads;
        EXPECT_EQ(found.variances, expected.variances) << shape.rows << ", " << threads;
    }
}

TEST(PrincipalComponents, EqualThePlainProgramBitForBit) {
    for (const Shape& shape :
         {Shape{900, 70, 70}, {31, 200, 30}, {64, 64, 5}, {2, 3, 1}, {3, 2, 2}, {200, 1, 1}}) {
        expect_plain_components(centred_values(shape.rows, shape.columns, 3), shape);
    }
}

TEST(PrincipalComponents, OfExpressionDataEqualThePlainProgramBitForBit) {
    plain::Matrix input =
        plain::read_tab_separated(OVIK_DATA_DIR "/brauer2008_chemostat.tsv", 1500);
    plain::normalise_input(input.values, input.rows, input.columns);
    expect_plain_components(input.values, {input.rows, input.columns, 10});
}

TEST(PrincipalComponents, AreThoseOfTheBook) {
    // Along (3, 4) / 5 the rows vary by 1, 3 and -4, across it by 1, -1 and 0.
    std::vector<double> values;
    for (const auto& [along, across] : {std::pair{1.0, 1.0}, {3.0, -1.0}, {-4.0, 0.0}}) {
        values.push_back(0.6 * along - 0.8 * across);
        values.push_back(0.8 * along + 0.6 * across);
    }
    const PrincipalComponents found = principal_components({values.data(), 3, 2}, 2);
    const double total = std::accumulate(found.variances.begin(), found.variances.end(), 0.0);
    // The products of the two ways are not 0, so that the directions are turned a little: those of
    // {{26, -2}, {-2, 2}} / 2.
    const double root = std::sqrt(12.0 * 12.0 + 2.0 * 2.0);
    EXPECT_THAT(found.variances,
                Pointwise(DoubleNear(1e-14), {(14.0 + root) / 2.0, (14.0 - root) / 2.0}));
    EXPECT_NEAR(total, 14.0, 1e-14);
    EXPECT_NEAR(found.total_variance, 14.0, 1e-14);
    EXPECT_NEAR(found.varianceKept(), 1.0, 1e-15);
    EXPECT_EQ(found.varying, 2U);
    EXPECT_GT(found.loadings[2], found.loadings[0]);
    EXPECT_GT(found.loadings[0], 0.0);
}

TEST(PrincipalComponents, HaveTheirVariances) {
    for (const Shape& shape : {Shape{300, 40, 6}, {40, 300, 6}}) {
        const std::vector<double> values = centred_values(shape.rows, shape.columns, 8);
        const PrincipalComponents found =
            principal_components({values.data(), shape.rows, shape.columns}, shape.count);
        for (std::size_t a = 0; a < shape.count; ++a) {
            for (std::size_t b = 0; b < shape.count; ++b) {
                double products = 0.0;
                for (std::size_t n = 0; n < shape.rows; ++n) {
                    products +=
                        found.scores[n * shape.count + a] * found.scores[n * shape.count + b];
                }
                EXPECT_NEAR(products / (static_cast<double>(shape.rows) - 1.0),
                            a == b ? found.variances[a] : 0.0,
                            1e-12);
            }
        }
        double squares = 0.0;
        for (const double value : values) {
            squares += value * value;
        }
        EXPECT_NEAR(found.total_variance, squares / (static_cast<double>(shape.rows) - 1.0), 1e-10);
        EXPECT_LT(found.varianceKept(), 1.0);
    }
}

TEST(PrincipalComponents, HaveAPositiveLoadingOfLargestMagnitude) {
    // Of two that are equal, the first.
    const std::vector<double> values = {-1.0, 1.0, 0.0, 0.0, 1.0, -1.0};
    const PrincipalComponents found = principal_components({values.data(), 3, 2}, 1);
    EXPECT_GT(found.loadings[0], 0.0);
    EXPECT_LT(found.loadings[1], 0.0);
    std::vector<double> mirrored = values;
    for (double& value : mirrored) {
        value = -value;
    }
    EXPECT_EQ(principal_components({mirrored.data(), 3, 2}, 1).loadings, found.loadings);
}

TEST(PrincipalComponents, AlongWhichNothingVariesAreZero) {
    for (const Shape& shape : {Shape{20, 4, 4}, {4, 20, 4}}) {
        // Every row is a multiple of the same one.
        std::vector<double> values(shape.rows * shape.columns);
        for (std::size_t n = 0; n < shape.rows; ++n) {
            for (std::size_t d = 0; d < shape.columns; ++d) {
                values[n * shape.columns + d] =
                    (static_cast<double>(n) - 0.5 * (static_cast<double>(shape.rows) - 1.0)) *
                    std::sin(1.0 + static_cast<double>(d));
            }
        }
        const PrincipalComponents found =
            principal_components({values.data(), shape.rows, shape.columns}, shape.count);
        EXPECT_EQ(found.varying, 1U);
        EXPECT_THAT(found.variances, ElementsAre(testing::Gt(0.0), 0.0, 0.0, 0.0));
        for (std::size_t n = 0; n < shape.rows; ++n) {
            EXPECT_THAT(std::vector<double>(found.scores.begin() + static_cast<long>(n) * 4 + 1,
                                            found.scores.begin() + static_cast<long>(n) * 4 + 4),
                        Each(0.0));
        }
    }
}

}  // namespace
}  // namespace ovik
