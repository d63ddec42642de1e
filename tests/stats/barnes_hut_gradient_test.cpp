#include "stats/barnes_hut_gradient.h"

#include <cfloat>
#include <cmath>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "stats/exact_forces.h"
#include "stats/tsne.h"

#include "tests/plain/plain_sptree.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/ring_matrix.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using test::Ring;
using test::rows_of;

std::vector<double> gradient(
    const Ring& ring, const std::vector<double>& Y, int N, int dims, double theta) {
    std::vector<double> dC(Y.size(), -7.0);
    TSNE<double>::computeGradient(nullptr,
                                  ring.row_P.data(),
                                  ring.col_P.data(),
                                  ring.val_P.data(),
                                  Y.data(),
                                  N,
                                  dims,
                                  dC.data(),
                                  theta);
    return dC;
}

TEST(BarnesHutGradient, AgreesWithTheExactOneForAVanishingTheta) {
    constexpr int kCount = 400;
    const Ring ring(kCount);
    for (int dims = 1; dims <= 5; ++dims) {
        const std::vector<double> Y =
            test::random_values(static_cast<std::size_t>(kCount * dims), 30, 3.0);
        std::vector<double> expected(Y.size());
        exact_gradient(
            ring.dense.data(), Y.data(), kCount, static_cast<std::size_t>(dims), expected.data());
        const std::vector<double> actual = gradient(ring, Y, kCount, dims, 1e-12);
        double error = 0.0;
        double scale = 0.0;
        for (std::size_t i = 0; i < Y.size(); ++i) {
            error += std::pow(actual[i] - expected[i], 2);
            scale += std::pow(expected[i], 2);
        }
        EXPECT_LE(std::sqrt(error / scale), 1e-12) << dims << " dimensions";
    }
}

TEST(BarnesHutGradient, IsTheSameForAnyNumberOfThreads) {
    constexpr int kCount = 1000;
    const Ring ring(kCount);
    const std::vector<double> Y = test::random_values(2 * kCount, 31, 5.0);
    std::vector<double> first;
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const std::vector<double> dC = gradient(ring, Y, kCount, 2, 0.5);
        first = first.empty() ? dC : first;
        EXPECT_EQ(dC, first);
    }
}

TEST(BarnesHutCost, EqualsTheDivergenceOverStoredEntries) {
    constexpr std::size_t kCount = 150;
    const Ring ring(kCount);
    const std::vector<double> Y = test::random_values(2 * kCount, 32, 2.0);
    double sum_Q = 0.0;
    const auto q = [&](std::size_t n, std::size_t m) {
        const double dx = Y[2 * n] - Y[2 * m];
        const double dy = Y[2 * n + 1] - Y[2 * m + 1];
        return 1.0 / (1.0 + dx * dx + dy * dy);
    };
    for (std::size_t n = 0; n < kCount; ++n) {
        for (std::size_t m = 0; m < kCount; ++m) {
            sum_Q += m == n ? 0.0 : q(n, m);
        }
    }
    double expected = 0.0;
    for (std::size_t n = 0; n < kCount; ++n) {
        for (std::size_t i = ring.row_P[n]; i < ring.row_P[n + 1]; ++i) {
            expected += ring.val_P[i] * std::log(ring.val_P[i] / (q(n, ring.col_P[i]) / sum_Q));
        }
    }
    double first = 0.0;
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const double actual = TSNE<double>::evaluateError(
            ring.row_P.data(), ring.col_P.data(), ring.val_P.data(), Y.data(), kCount, 2, 1e-12);
        EXPECT_NEAR(actual, expected, 1e-12 * std::fabs(expected));
        first = threads == 1 ? actual : first;
        EXPECT_EQ(actual, first);
    }
}

TEST(BarnesHutCost, GivesZeroEntriesNoWeight) {
    const unsigned int row_P[] = {0, 1, 2};
    const unsigned int col_P[] = {1, 0};
    const double val_P[] = {0.0, 0.0};
    const double Y[] = {0.0, 3.0};
    EXPECT_EQ(barnes_hut_cost({row_P, col_P, val_P}, Y, 2, 1, 0.5), 0.0);
}

TEST(BarnesHutCost, AddsTheGuardBehindTheDivision) {
    // Two points so far apart that q / sum_Q is a half all the same.
    const unsigned int row_P[] = {0, 1, 2};
    const unsigned int col_P[] = {1, 0};
    const double val_P[] = {0.5, 0.5};
    const double Y[] = {0.0, 1e150};
    EXPECT_EQ(barnes_hut_cost({row_P, col_P, val_P}, Y, 2, 1, 0.5), 0.0);
    // q underflows: the guards decide.
    const double beyond[] = {0.0, 0.0, 1e200};
    const unsigned int rows[] = {0, 1, 1, 1};
    const unsigned int columns[] = {2};
    const double values[] = {1.0};
    EXPECT_EQ(barnes_hut_cost({rows, columns, values}, beyond, 3, 1, 0.5),
              std::log((1.0 + DBL_MIN) / DBL_MIN));
}

/// The cost of one entry of weight p between points at a squared distance, beside a third point
/// that makes the normalisation.
double cost_of_entry(double p, double squared_distance) {
    const unsigned int row_P[] = {0, 1, 1, 1};
    const unsigned int col_P[] = {1};
    const double Y[] = {0.0, std::sqrt(squared_distance), -1.0};
    return barnes_hut_cost({row_P, col_P, &p}, Y, 3, 1, 0.0);
}

double expected_cost_of_entry(double p, double squared_distance) {
    const plain::SparseRows rows = {{{1, p}}, {}, {}};
    return plain::barnes_hut_cost(rows, {0.0, std::sqrt(squared_distance), -1.0}, 1, 0.0);
}

TEST(BarnesHutCost, HasAccurateLogarithmsOverTheWholeRange) {
    for (const InstructionSet instructions : test::kInstructionSets) {
        const test::InstructionLimit limit(instructions);
        for (int exponent = -330; exponent <= 300; ++exponent) {
            for (const double mantissa : {1.0, 1.03, 1.97, 3.1, 7.77}) {
                const double x = mantissa * std::pow(10.0, exponent);
                for (const auto& [p, d] : {std::pair(x, 2.0), std::pair(0.01, x)}) {
                    const double expected = expected_cost_of_entry(p, d);
                    EXPECT_NEAR(cost_of_entry(p, d),
                                expected,
                                2e-15 * std::fabs(expected) + 4e-16 * p + 1e-323)
                        << p << " " << d;
                }
            }
        }
    }
}

TEST(BarnesHutCost, IsNanWhereItsNumbersAre) {
    EXPECT_TRUE(std::isnan(cost_of_entry(std::nan(""), 1.0)));
    EXPECT_TRUE(std::isnan(cost_of_entry(-1.0, 1.0)));
    EXPECT_TRUE(std::isnan(cost_of_entry(0.5, std::nan(""))));
    EXPECT_EQ(cost_of_entry(0.0, 1.0), 0.0);
}

TEST(BarnesHutCost, IsZeroWithoutPoints) {
    EXPECT_EQ(TSNE<double>::evaluateError(nullptr, nullptr, nullptr, nullptr, 0, 2, 0.5), 0.0);
}

TEST(BarnesHutCost, TakesPointsWithoutDimensionsAsCoincident) {
    const unsigned int row_P[] = {0, 1, 2};
    const unsigned int col_P[] = {1, 0};
    const double val_P[] = {0.5, 0.5};
    EXPECT_EQ(barnes_hut_cost({row_P, col_P, val_P}, nullptr, 2, 0, 0.5), 0.0);
}

TEST(BarnesHutCost, TakesCoincidentPointsAtFullSimilarity) {
    const unsigned int row_P[] = {0, 1, 2};
    const unsigned int col_P[] = {1, 0};
    const double val_P[] = {0.5, 0.5};
    const double Y[] = {4.0, 4.0};
    EXPECT_EQ(barnes_hut_cost({row_P, col_P, val_P}, Y, 2, 1, 0.5), 0.0);
}

TEST(BarnesHutGradient, TakesAnEmbeddingWithItsShape) {
    const Ring ring(20);
    const std::vector<double> Y = test::random_values(40, 53);
    std::vector<double> expected(40);
    std::vector<double> dY(40);
    barnes_hut_gradient(ring.view(), Y.data(), 20, 2, expected.data(), 0.5);
    barnes_hut_gradient(ring.view(), {Y.data(), 20, 2}, dY.data(), 0.5);
    EXPECT_EQ(dY, expected);
    EXPECT_EQ(barnes_hut_cost(ring.view(), {Y.data(), 20, 2}, 0.5),
              barnes_hut_cost(ring.view(), Y.data(), 20, 2, 0.5));
}

}  // namespace
}  // namespace ovik
