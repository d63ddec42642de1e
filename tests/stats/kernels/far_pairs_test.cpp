#include "stats/kernels/far_pairs.h"

#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class FarPairsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const FarPairs& kernels = far_pairs(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         FarPairsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

TEST_P(FarPairsTest, SumTheTermsOfPairs) {
    constexpr std::size_t kCount = 24;
    constexpr double kScale = 1048576.0;
    const std::vector<double> x = test::random_values(kCount, 1, 3.0);
    const std::vector<double> y = test::random_values(kCount, 2, 3.0);
    const std::vector<FarPlace> far{{30.0, 2.0}, {-1.0, -17.5}, {1e200, 0.0}};
    std::vector<double> of_points(kFarSums * kCount, 7.0);
    // They are added to.
    std::vector<std::int64_t> of_far(kFarSums * far.size(), 1000);
    kernels.sum({x.data(), y.data(), kCount},
                far.data(),
                far.size(),
                kScale,
                of_points.data(),
                of_far.data());
    std::vector<double> expected(kFarSums * kCount, 0.0);
    std::vector<std::int64_t> expected_of_far(kFarSums * far.size(), 1000);
    for (std::size_t f = 0; f < far.size(); ++f) {
        for (std::size_t i = 0; i < kCount; ++i) {
            const double dx = x[i] - far[f].x;
            const double dy = y[i] - far[f].y;
            const double q = 1.0 / (1.0 + (dx * dx + dy * dy));
            const double terms[kFarSums] = {q * q * dx, q * q * dy, q};
            for (std::size_t k = 0; k < kFarSums; ++k) {
                expected[k * kCount + i] += terms[k];
                expected_of_far[f * kFarSums + k] += std::llrint(terms[k] * kScale);
            }
        }
    }
    EXPECT_EQ(of_points, expected);
    EXPECT_EQ(of_far, expected_of_far);
}

TEST_P(FarPairsTest, OfNoFarPointsAreNothing) {
    const std::vector<double> x(kFarGroup, 1.0);
    std::vector<double> of_points(kFarSums * kFarGroup, 7.0);
    kernels.sum({x.data(), x.data(), kFarGroup}, nullptr, 0, 1.0, of_points.data(), nullptr);
    EXPECT_EQ(of_points, std::vector<double>(kFarSums * kFarGroup, 0.0));
}

}  // namespace
}  // namespace ovik
