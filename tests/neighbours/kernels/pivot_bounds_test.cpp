#include "neighbours/kernels/pivot_bounds.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class PivotKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const PivotKernels& kernels = pivot_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         PivotKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

bool plain_is_beyond(const std::vector<double>& bounds,
                     const std::vector<double>& target,
                     double radius) {
    for (std::size_t p = 0; p < kPivots; ++p) {
        if (radius < bounds[p] - target[p] || radius < target[p] - bounds[kPivots + p]) {
            return true;
        }
    }
    return false;
}

/// Distances between 1 and 3 from every pivot.
std::vector<double> shell() {
    std::vector<double> bounds(kPivots, 1.0);
    bounds.resize(2 * kPivots, 3.0);
    return bounds;
}

TEST_P(PivotKernelsTest, SeeEveryPivotThatIsTooNearOrTooFar) {
    for (std::size_t p = 0; p < kPivots; ++p) {
        std::vector<double> target(kPivots, 2.0);
        EXPECT_FALSE(kernels.is_beyond(shell().data(), target.data(), 0.5));
        target[p] = 4.0;
        EXPECT_TRUE(kernels.is_beyond(shell().data(), target.data(), 0.5)) << p;
        EXPECT_FALSE(kernels.is_beyond(shell().data(), target.data(), 1.0)) << p;
        target[p] = 0.0;
        EXPECT_TRUE(kernels.is_beyond(shell().data(), target.data(), 0.5)) << p;
        EXPECT_FALSE(kernels.is_beyond(shell().data(), target.data(), 1.0)) << p;
    }
}

TEST_P(PivotKernelsTest, DecideAsAPlainLoop) {
    for (unsigned int seed = 0; seed < 500; ++seed) {
        std::vector<double> bounds = test::random_values(2 * kPivots, seed);
        for (std::size_t p = 0; p < kPivots; ++p) {
            bounds[kPivots + p] = bounds[p] + std::fabs(bounds[kPivots + p]);
        }
        const std::vector<double> target = test::random_values(kPivots, seed + 1000);
        for (const double radius : {0.5, 1.5, 2.5}) {
            EXPECT_EQ(kernels.is_beyond(bounds.data(), target.data(), radius),
                      plain_is_beyond(bounds, target, radius));
        }
    }
}

TEST_P(PivotKernelsTest, KnowNothingFromDistancesThatAreNotNumbers) {
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<double> target(kPivots, std::nan(""));
    EXPECT_FALSE(kernels.is_beyond(shell().data(), target.data(), 0.0));
    std::vector<double> anywhere(kPivots, -inf);
    anywhere.resize(2 * kPivots, inf);
    EXPECT_FALSE(kernels.is_beyond(anywhere.data(), shell().data(), 0.0));
}

}  // namespace
}  // namespace ovik
