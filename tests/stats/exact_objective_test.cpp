#include "stats/exact_objective.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_tsne.h"
#include "tests/support/pair_kernels.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kColumns = 4;

std::vector<double> joint_similarities(const std::vector<double>& X, std::size_t N) {
    std::vector<double> P = plain::conditional_similarities(X, N, kColumns, 5.0);
    plain::symmetrise_and_normalise(P, N);
    return P;
}

std::string printed(double value) {
    char text[512];
    std::snprintf(text, sizeof text, "%f", value);
    return text;
}

void expect_equal_or_nan(const std::vector<double>& actual, const std::vector<double>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (std::isnan(expected[i])) {
            EXPECT_TRUE(std::isnan(actual[i]));
        } else {
            EXPECT_EQ(actual[i], expected[i]);
        }
    }
}

/// Gradient and cost as the plain program has them, by each of the operations.
void expect_plain_values(ExactObjective& objective,
                         const std::vector<double>& P,
                         const std::vector<double>& Y,
                         std::size_t N) {
    const std::vector<double> gradient = plain::gradient(P, Y, N, 2);
    const std::string cost = printed(plain::cost(P, Y, N, 2));
    std::vector<double> dY(Y.size(), -7.0);
    objective.gradient(Y.data(), dY.data());
    expect_equal_or_nan(dY, gradient);
    dY.assign(Y.size(), -7.0);
    EXPECT_EQ(printed(objective.costAndGradient(Y.data(), dY.data())), cost);
    expect_equal_or_nan(dY, gradient);
    EXPECT_EQ(printed(objective.cost(Y.data())), cost);
}

TEST(ExactObjective, EqualsThePlainProgramBelowAndAboveTheSizeForPanels) {
    for (const std::size_t N : {1U, 2U, 3U, 40U, 63U, 64U, 65U, 131U, 200U}) {
        const std::vector<double> X = test::random_values(N * kColumns, 71);
        const std::vector<double> P = joint_similarities(X, N);
        for (const InstructionSet set : test::available_instruction_sets()) {
            const test::InstructionLimit selected(set);
            for (const int threads : test::kThreadCounts) {
                const test::ThreadCount scope(threads);
                ExactObjective objective({X.data(), N, kColumns}, 2, 5.0);
                expect_plain_values(objective, P, test::random_values(N * 2, 72, 5.0), N);
            }
        }
    }
}

TEST(ExactObjective, ExaggeratesAndEndsIt) {
    constexpr std::size_t kCount = 100;
    const std::vector<double> X = test::random_values(kCount * kColumns, 73);
    const std::vector<double> Y = test::random_values(kCount * 2, 74, 5.0);
    std::vector<double> P = joint_similarities(X, kCount);
    ExactObjective objective({X.data(), kCount, kColumns}, 2, 5.0);
    objective.exaggerate(12.0);
    for (double& p : P) {
        p *= 12.0;
    }
    expect_plain_values(objective, P, Y, kCount);
    objective.endExaggeration(12.0);
    for (double& p : P) {
        p /= 12.0;
    }
    expect_plain_values(objective, P, Y, kCount);
}

TEST(ExactObjective, GoesOnWithEmbeddingsThatAreNotFinite) {
    constexpr std::size_t kCount = 100;
    const std::vector<double> X = test::random_values(kCount * kColumns, 75);
    std::vector<double> P = joint_similarities(X, kCount);
    for (const double odd : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e160, 1e200}) {
        ExactObjective objective({X.data(), kCount, kColumns}, 2, 5.0);
        std::vector<double> Y = test::random_values(kCount * 2, 76);
        expect_plain_values(objective, P, Y, kCount);
        Y[77] = odd;
        expect_plain_values(objective, P, Y, kCount);
        Y[77] = 1.0;
        expect_plain_values(objective, P, Y, kCount);
        objective.exaggerate(2.0);
        std::vector<double> doubled = P;
        for (double& p : doubled) {
            p *= 2.0;
        }
        expect_plain_values(objective, doubled, Y, kCount);
    }
}

TEST(ExactObjective, OfNoNumbersIsNone) {
    constexpr std::size_t kCount = 70;
    const std::vector<double> X(kCount * kColumns, std::nan(""));
    ExactObjective objective({X.data(), kCount, kColumns}, 2, 5.0);
    const std::vector<double> Y = test::random_values(kCount * 2, 77);
    std::vector<double> dY(Y.size());
    EXPECT_TRUE(std::isnan(objective.costAndGradient(Y.data(), dY.data())));
    for (const double value : dY) {
        EXPECT_TRUE(std::isnan(value));
    }
}

TEST(ExactObjective, GivesACostThatPrintsAsZeroTheSignOfThePlainSum) {
    // Equal distances in the input and in the embedding: nothing tells the similarities apart.
    constexpr std::size_t kCount = 70;
    const std::vector<double> X(kCount * kColumns, 1.0);
    const std::vector<double> P = joint_similarities(X, kCount);
    ExactObjective objective({X.data(), kCount, kColumns}, 2, 5.0);
    const std::vector<double> Y(kCount * 2, 0.5);
    expect_plain_values(objective, P, Y, kCount);
    EXPECT_LT(std::fabs(objective.cost(Y.data())), 1e-6);
}

TEST(ExactObjective, WritesNothingWithoutPointsOrDimensions) {
    ExactObjective empty({nullptr, 0, 3}, 2, 5.0);
    EXPECT_EQ(empty.costAndGradient(nullptr, nullptr), 0.0);
    constexpr std::size_t kCount = 70;
    const std::vector<double> X = test::random_values(kCount * kColumns, 78);
    ExactObjective flat({X.data(), kCount, kColumns}, 0, 5.0);
    EXPECT_TRUE(std::isfinite(flat.costAndGradient(nullptr, nullptr)));
}

}  // namespace
}  // namespace ovik
