#include "stats/kernels/trial_sums.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class TrialKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const TrialKernels& kernels = trial_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         TrialKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

TEST_P(TrialKernelsTest, AddWhatPointsContribute) {
    for (std::size_t count = 0; count <= 67; ++count) {
        std::vector<double> squares = test::random_values(count, 81);
        TrialSums expected{1.0, 2.0, 3.0};
        for (double& square : squares) {
            square *= square;
            const double weight = std::exp(-1.5 * square);
            expected.weights += weight;
            expected.first += weight * square;
            expected.second += weight * square * square;
        }
        TrialSums sums{1.0, 2.0, 3.0};
        kernels.add(squares.data(), count, 1.5, sums);
        EXPECT_NEAR(sums.weights, expected.weights, 1e-9 * expected.weights);
        EXPECT_NEAR(sums.first, expected.first, 1e-9 * expected.first);
        EXPECT_NEAR(sums.second, expected.second, 1e-9 * expected.second);
    }
}

TEST_P(TrialKernelsTest, AreRightForWeightsOfAnySize) {
    for (double x = 0.0; x < 690.0; x += 0.0371) {
        TrialSums sums;
        kernels.add(&x, 1, 1.0, sums);
        EXPECT_NEAR(sums.weights, std::exp(-x), 1e-9 * std::exp(-x)) << x;
    }
}

TEST_P(TrialKernelsTest, GiveNothingForWeightsThatUnderflow) {
    for (const double x : {700.0, 745.0, 1e10, 1e300}) {
        TrialSums sums;
        kernels.add(&x, 1, 1.0, sums);
        EXPECT_GE(sums.weights, 0.0);
        EXPECT_LE(sums.weights, 1e-300);
        EXPECT_LE(sums.first, 1e-290);
    }
}

}  // namespace
}  // namespace ovik
