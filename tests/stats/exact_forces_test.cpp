#include "stats/exact_forces.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tsne.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

std::vector<double> joint_similarities(std::size_t N) {
    std::vector<double> P =
        plain::conditional_similarities(test::random_values(N * 4, 20), N, 4, 5.0);
    plain::symmetrise_and_normalise(P, N);
    return P;
}

std::vector<double> gradient(const std::vector<double>& P, const std::vector<double>& Y, int N) {
    std::vector<double> dC(Y.size(), -7.0);
    TSNE<double>::computeExactGradient(
        P.data(), Y.data(), N, static_cast<int>(Y.size()) / N, dC.data());
    return dC;
}

std::string printed(double value) {
    char text[512];
    std::snprintf(text, sizeof text, "%f", value);
    return text;
}

TEST(ExactGradient, EqualsThePlainProgramBitForBit) {
    constexpr std::size_t kCount = 97;
    const std::vector<double> P = joint_similarities(kCount);
    for (const std::size_t dims : {1U, 2U, 3U, 5U}) {
        for (const double scale : {1e-4, 1.0, 50.0}) {
            const std::vector<double> Y = test::random_values(kCount * dims, 21, scale);
            const std::vector<double> expected = plain::gradient(P, Y, kCount, dims);
            for (const int threads : test::kThreadCounts) {
                const test::ThreadCount scope(threads);
                EXPECT_EQ(gradient(P, Y, kCount), expected);
            }
        }
    }
}

TEST(ExactGradient, ReadsTheRowsOfSimilaritiesThatAreNotSymmetric) {
    constexpr std::size_t kCount = 97;
    std::vector<double> P = test::random_values(kCount * kCount, 24);
    for (double& p : P) {
        p = p * p;
    }
    const std::vector<double> Y = test::random_values(kCount * 2, 25);
    const std::vector<double> expected = plain::gradient(P, Y, kCount, 2);
    const double cost = plain::cost(P, Y, kCount, 2);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        EXPECT_EQ(gradient(P, Y, kCount), expected);
        EXPECT_EQ(exact_cost(P.data(), Y.data(), kCount, 2), cost);
    }
}

TEST(ExactGradient, IsAQuarterOfTheSlopeOfTheCost) {
    constexpr std::size_t kCount = 30;
    const std::vector<double> P = joint_similarities(kCount);
    std::vector<double> Y = test::random_values(kCount * 2, 22);
    const std::vector<double> dC = gradient(P, Y, kCount);
    constexpr double kStep = 1e-5;
    for (std::size_t i = 0; i < Y.size(); i += 7) {
        const double y = Y[i];
        Y[i] = y + kStep;
        const double above = exact_cost(P.data(), Y.data(), kCount, 2);
        Y[i] = y - kStep;
        const double below = exact_cost(P.data(), Y.data(), kCount, 2);
        Y[i] = y;
        // Central differences are good to the square of the step.
        EXPECT_NEAR(4.0 * dC[i], (above - below) / (2.0 * kStep), 1e-8);
    }
}

TEST(ExactGradient, TakesCoincidentPointsAtFullSimilarity) {
    const std::vector<double> P = {0.0, 0.5, 0.5, 0.0};
    EXPECT_EQ(gradient(P, {1.0, 2.0, 1.0, 2.0}, 2), std::vector<double>(4, 0.0));
    const double Y[] = {1.0, 2.0, 1.0, 2.0};
    // Q is 1 / 2 for both pairs, as is P.
    EXPECT_EQ(exact_cost(P.data(), Y, 2, 2), 0.0);
}

TEST(ExactGradient, WritesNothingWithoutPoints) {
    TSNE<double>::computeExactGradient(nullptr, nullptr, 0, 2, nullptr);
    EXPECT_EQ(TSNE<double>::evaluateError(nullptr, nullptr, 0, 2), 0.0);
}

TEST(ExactCost, EqualsThePlainProgram) {
    constexpr std::size_t kCount = 97;
    const std::vector<double> P = joint_similarities(kCount);
    const std::vector<double> Y = test::random_values(kCount * 2, 23);
    const double expected = plain::cost(P, Y, kCount, 2);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const double actual = TSNE<float>::evaluateError(P.data(), Y.data(), kCount, 2);
        EXPECT_EQ(printed(actual), printed(expected));
        EXPECT_EQ(actual, exact_cost(P.data(), Y.data(), kCount, 2));
    }
}

TEST(ExactForces, TakeAnEmbeddingWithItsShape) {
    const std::vector<double> P = test::random_values(9, 51);
    const std::vector<double> Y = test::random_values(6, 52);
    std::vector<double> expected(6);
    std::vector<double> gradient(6);
    exact_gradient(P.data(), Y.data(), 3, 2, expected.data());
    exact_gradient(P.data(), {Y.data(), 3, 2}, gradient.data());
    EXPECT_EQ(gradient, expected);
    std::vector<double> positive = P;
    for (double& p : positive) {
        p = p * p;
    }
    EXPECT_EQ(exact_cost(positive.data(), {Y.data(), 3, 2}),
              exact_cost(positive.data(), Y.data(), 3, 2));
}

TEST(ExactRowCosts, AreWhatTheCostWouldBeOfOneRowOfAffinitiesAlone) {
    constexpr std::size_t kCount = 23;
    const std::vector<double> P = joint_similarities(kCount);
    const std::vector<double> Y = test::random_values(kCount * 2, 22);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        std::vector<double> costs(kCount, -7.0);
        exact_row_costs(P.data(), Y.data(), kCount, 2, platform_elementary().log, costs.data());
        for (std::size_t n = 0; n < kCount; ++n) {
            std::vector<double> alone(P.size(), 0.0);
            std::copy_n(P.begin() + static_cast<std::ptrdiff_t>(n * kCount),
                        kCount,
                        alone.begin() + static_cast<std::ptrdiff_t>(n * kCount));
            EXPECT_DOUBLE_EQ(costs[n], exact_cost(alone.data(), Y.data(), kCount, 2)) << n;
        }
    }
}

}  // namespace
}  // namespace ovik
