#include "neighbours/kernels/tree_walk.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "neighbours/tree_builder.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class WalkKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const WalkKernels& kernels = walk_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         WalkKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

constexpr double kUntouched = -7.0;

/// What a walk is asked for.
struct Walk {
    std::size_t dims;
    double squared_theta;
    std::size_t begin;
    std::size_t end;
};

/// Forces, then shares, of the points at some positions.
std::vector<double> repulsion(TreeWalk kernel,
                              const std::vector<double>& points,
                              const Walk& walk) {
    const std::size_t N = points.size() / walk.dims;
    TreeBuilder builder(walk.dims, N);
    const std::size_t parts = builder.prepare(points.data(), walk.squared_theta);
    for (std::size_t part = 0; part < parts; ++part) {
        builder.buildPart(part);
    }
    builder.join();
    TreeView tree = builder.view();
    tree.data = points.data();
    std::vector<double> results((walk.dims + 1) * N, kUntouched);
    double* const forces = results.data();
    kernel(tree, walk.begin, walk.end, forces, forces + walk.dims * N);
    return results;
}

TEST_P(WalkKernelsTest, GiveTheBitsOfTheScalarOnesForEveryNumberOfPoints) {
    const WalkKernels& scalar = walk_kernels(InstructionSet::Scalar);
    for (std::size_t N = 0; N <= 67; ++N) {
        for (const double squared_theta : {0.0, 0.25, 1.0}) {
            const std::vector<double> plane = test::random_values(2 * N, 31);
            EXPECT_EQ(repulsion(kernels.in_plane, plane, {2, squared_theta, 0, N}),
                      repulsion(scalar.in_plane, plane, {2, squared_theta, 0, N}));
            const std::vector<double> space = test::random_values(3 * N, 32);
            EXPECT_EQ(repulsion(kernels.in_space, space, {3, squared_theta, 0, N}),
                      repulsion(scalar.in_space, space, {3, squared_theta, 0, N}));
        }
    }
}

TEST_P(WalkKernelsTest, GiveTheBitsOfTheScalarOnesForPointsOfAllSpreads) {
    const WalkKernels& scalar = walk_kernels(InstructionSet::Scalar);
    // From coincident points to as far apart as the walk may go.
    for (const double scale : {0.0, 1e-3, 1.0, 1e4, 1e10, 0x1p95}) {
        for (const double squared_theta : {0.0, 0.0025, 0.25, 4.0, 0x1p100, HUGE_VAL}) {
            const std::vector<double> plane = test::random_values(2 * 300, 34, scale);
            EXPECT_EQ(repulsion(kernels.in_plane, plane, {2, squared_theta, 0, 300}),
                      repulsion(scalar.in_plane, plane, {2, squared_theta, 0, 300}));
            const std::vector<double> space = test::random_values(3 * 200, 35, scale);
            EXPECT_EQ(repulsion(kernels.in_space, space, {3, squared_theta, 0, 200}),
                      repulsion(scalar.in_space, space, {3, squared_theta, 0, 200}));
        }
    }
}

TEST_P(WalkKernelsTest, AddUpAllPairsInOneDimensionOfThePlane) {
    // Powers of two, so that every sum is exact in any order.
    const std::vector<double> points = {0.0, 0.0, 1.0, 0.0, -1.0, 0.0};
    const std::vector<double> results = repulsion(kernels.in_plane, points, {2, 0.0, 0, 3});
    // q is 1/2 at a distance of 1 and 1/5 at 2.
    EXPECT_EQ(results[0], 0.0);
    EXPECT_EQ(results[2], 0.25 + 2.0 * (0.2 * 0.2));
    EXPECT_EQ(results[4], -(0.25 + 2.0 * (0.2 * 0.2)));
    EXPECT_EQ(results[6], 1.0);
    EXPECT_EQ(results[7], 0.5 + 0.2);
    EXPECT_EQ(results[8], 0.5 + 0.2);
}

TEST_P(WalkKernelsTest, WriteThePointsOfTheirPositionsOnly) {
    constexpr std::size_t kCount = 60;
    const std::vector<double> points = test::random_values(2 * kCount, 33);
    const std::vector<double> all = repulsion(kernels.in_plane, points, {2, 0.25, 0, kCount});
    for (std::size_t begin = 0; begin <= kCount; begin += 7) {
        for (std::size_t end = begin; end <= kCount; end += 5) {
            const std::vector<double> some =
                repulsion(kernels.in_plane, points, {2, 0.25, begin, end});
            std::size_t written = 0;
            for (std::size_t n = 0; n < kCount; ++n) {
                const bool is_written = some[2 * kCount + n] != kUntouched;
                written += is_written ? 1 : 0;
                for (const std::size_t i : {2 * n, 2 * n + 1, 2 * kCount + n}) {
                    ASSERT_EQ(some[i], is_written ? all[i] : kUntouched);
                }
            }
            EXPECT_EQ(written, end - begin);
        }
    }
}

}  // namespace
}  // namespace ovik
