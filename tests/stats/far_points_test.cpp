#include "stats/far_points.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_far_points.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr MapBox kBox = {{-2.0, -2.0}, {2.0, 2.0}, true};
constexpr plain::Box kPlainBox = {{-2.0, -2.0}, {2.0, 2.0}};

TEST(FarPoints, HavePairsAsThePlainProgramForAnyNumberOfThreadsAndInstructions) {
    const std::vector<double> Y = test::random_values(2600, 17, 1.0);
    const std::size_t N = Y.size() / 2;
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            FarPoints far;
            far.compute(Y.data(), N, kBox);
            std::vector<double> forces(2 * N, 0.0);
            std::vector<double> z_terms(N, 0.0);
            for (std::size_t i = 0; i < far.size(); ++i) {
                far.write(i, forces.data(), z_terms.data());
            }
            std::size_t outside = 0;
            for (std::size_t n = 0; n < N; ++n) {
                const bool is_far = !plain::is_inside(kPlainBox, Y, n);
                outside += is_far ? 1 : 0;
                if (!is_far) {
                    far.addTo(n, forces.data(), z_terms.data());
                }
                const plain::PairSums expected =
                    is_far ? plain::on_far_point(Y, n) : plain::from_far_points(kPlainBox, Y, n);
                ASSERT_EQ(forces[2 * n], expected.force[0]) << n;
                ASSERT_EQ(forces[2 * n + 1], expected.force[1]) << n;
                ASSERT_EQ(z_terms[n], expected.q) << n;
            }
            EXPECT_EQ(far.size(), outside);
            EXPECT_GT(outside, 20U);
        }
    }
}

TEST(FarPoints, OfTwoPointsPushEachOther) {
    const std::vector<double> Y{0.0, 0.0, 3.0, 0.0};
    FarPoints far;
    far.compute(Y.data(), 2, kBox);
    ASSERT_EQ(far.size(), 1U);
    double forces[4] = {};
    double z_terms[2] = {};
    far.addTo(0, forces, z_terms);
    far.write(0, forces, z_terms);
    EXPECT_NEAR(forces[0], -0.03, 1e-14);
    EXPECT_NEAR(forces[2], 0.03, 1e-14);
    EXPECT_EQ(forces[3], 0.0);
    EXPECT_NEAR(z_terms[0], 0.1, 1e-14);
    EXPECT_NEAR(z_terms[1], 0.1, 1e-14);
}

TEST(FarPoints, AreNoneInsideTheBox) {
    const std::vector<double> Y{0.0, 2.0, -2.0, 1.0};
    FarPoints far;
    far.compute(Y.data(), 2, kBox);
    EXPECT_EQ(far.size(), 0U);
}

}  // namespace
}  // namespace ovik
