#include "stats/gradient_descent.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/threads.h"

namespace ovik {
namespace {

TEST(GradientDescent, RaisesTheGainWhereTheSignsDiffer) {
    GradientDescent descent(1);
    double y = 0.0;
    // From rest, any gradient differs in sign from the velocity: the gain becomes 1.2.
    descent.gradient()[0] = 0.5;
    descent.step(&y, 0.5);
    const double first = -(1.2 * 200.0) * 0.5;
    EXPECT_EQ(y, first);
    // The velocity now points against the gradient: signs differ again.
    descent.step(&y, 0.5);
    EXPECT_EQ(y, first + (first * 0.5 - ((1.2 + 0.2) * 200.0) * 0.5));
}

TEST(GradientDescent, LowersTheGainWhereTheSignsAgree) {
    GradientDescent descent(1);
    double y = 0.0;
    descent.gradient()[0] = 0.5;
    descent.step(&y, 0.5);
    const double first = y;
    descent.gradient()[0] = -0.25;
    descent.step(&y, 0.8);
    EXPECT_EQ(y, first + (first * 0.8 - ((1.2 * 0.8) * 200.0) * -0.25));
}

TEST(GradientDescent, TakesZeroAgainstZeroAsAgreement) {
    GradientDescent descent(1);
    double y = 0.0;
    descent.gradient()[0] = 0.0;
    descent.step(&y, 0.5);
    EXPECT_EQ(y, 0.0);
    // The gain has shrunk to 0.8 and now grows to 1.0.
    descent.gradient()[0] = 1.0;
    descent.step(&y, 0.5);
    EXPECT_EQ(y, -((0.8 + 0.2) * 200.0));
}

TEST(GradientDescent, TakesAZeroGradientAgainstMotionAsDifference) {
    GradientDescent descent(1);
    double y = 0.0;
    descent.gradient()[0] = 1.0;
    descent.step(&y, 0.5);
    const double first = y;
    descent.gradient()[0] = 0.0;
    descent.step(&y, 0.5);
    EXPECT_EQ(y, first + first * 0.5);
    descent.gradient()[0] = 1.0;
    const double second_velocity = first * 0.5;
    const double before = y;
    descent.step(&y, 0.5);
    EXPECT_EQ(y, before + (second_velocity * 0.5 - ((1.2 + 0.2 + 0.2) * 200.0) * 1.0));
}

TEST(GradientDescent, KeepsGainsFromFallingBelowTheFloor) {
    GradientDescent descent(1);
    double y = 0.0;
    descent.gradient()[0] = 0.0;
    for (int i = 0; i < 60; ++i) {
        descent.step(&y, 0.5);
    }
    descent.gradient()[0] = 1.0;
    descent.step(&y, 0.5);
    EXPECT_EQ(y, -((0.01 + 0.2) * 200.0));
}

TEST(GradientDescent, TakesANanGradientAsPositive) {
    GradientDescent descent(1);
    double y = 0.0;
    descent.gradient()[0] = std::nan("");
    descent.step(&y, 0.5);
    EXPECT_TRUE(std::isnan(y));
}

TEST(GradientDescent, IsTheSameForAnyNumberOfThreads) {
    constexpr std::size_t kCount = 40000;
    std::vector<double> first;
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        GradientDescent descent(kCount);
        std::vector<double> Y(kCount, 0.0);
        for (int step = 0; step < 5; ++step) {
            for (std::size_t i = 0; i < kCount; ++i) {
                descent.gradient()[i] = std::sin(static_cast<double>(i) + step);
            }
            descent.step(Y.data(), 0.5);
        }
        first = first.empty() ? Y : first;
        EXPECT_EQ(Y, first);
    }
}

TEST(GradientDescent, FindsTheMinimumOfABowl) {
    GradientDescent descent(2);
    double y[2] = {3.0, -4.0};
    for (int step = 0; step < 2000; ++step) {
        descent.gradient()[0] = 1e-4 * (y[0] - 1.0);
        descent.gradient()[1] = 1e-4 * (y[1] - 2.0);
        descent.step(y, 0.5);
    }
    EXPECT_NEAR(y[0], 1.0, 1e-6);
    EXPECT_NEAR(y[1], 2.0, 1e-6);
}

TEST(GradientDescent, LeavesConstantGainsAlone) {
    GradientDescent descent(2, GainKind::Constant);
    double Y[2] = {1.0, -1.0};
    descent.gradient()[0] = 0.5;
    descent.gradient()[1] = -0.25;
    descent.step(Y, 0.9, 4.0);
    EXPECT_EQ(Y[0], 1.0 - 2.0);
    EXPECT_EQ(Y[1], -1.0 + 1.0);
    descent.gradient()[0] = -0.5;
    descent.step(Y, 0.9, 8.0);
    EXPECT_EQ(descent.velocity()[0], -2.0 * 0.9 + 4.0);
    EXPECT_EQ(descent.gains()[0], 1.0);
    EXPECT_EQ(descent.gains()[1], 1.0);
}

}  // namespace
}  // namespace ovik
