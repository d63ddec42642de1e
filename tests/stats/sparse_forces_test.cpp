#include "stats/sparse_forces.h"

#include <cmath>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tree_repulsion.h"

#include "tests/plain/plain_sptree.h"
#include "tests/support/all_pairs_repulsion.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/ring_matrix.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using test::Ring;

TEST(SparseForces, EqualThePlainProgram) {
    constexpr std::size_t kCount = 700;
    const Ring ring(kCount);
    const plain::SparseRows rows = test::rows_of(ring);
    for (const std::size_t dims : {1U, 2U, 3U, 5U}) {
        const std::vector<double> Y = test::random_values(dims * kCount, 33, 5.0);
        const std::vector<double> expected = plain::barnes_hut_gradient(rows, Y, dims, 0.5);
        const double expected_cost = plain::barnes_hut_cost(rows, Y, dims, 0.5);
        double first_cost = 0.0;
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            for (const InstructionSet instructions : test::kInstructionSets) {
                const test::InstructionLimit limit(instructions);
                SparseForces forces(
                    kCount, dims, std::make_unique<TreeRepulsion>(kCount, dims, 0.5));
                std::vector<double> dY(Y.size());
                forces.gradient(ring.view(), Y.data(), dY.data());
                EXPECT_EQ(dY, expected);
                const double cost = forces.cost(ring.view(), Y.data());
                EXPECT_NEAR(cost, expected_cost, 1e-13 * std::fabs(expected_cost));
                first_cost = first_cost == 0.0 ? cost : first_cost;
                EXPECT_EQ(cost, first_cost);
                dY.assign(dY.size(), -7.0);
                EXPECT_EQ(forces.costAndGradient(ring.view(), Y.data(), dY.data()), cost);
                EXPECT_EQ(dY, expected);
            }
        }
    }
}

TEST(SparseForces, TakeAnotherRepulsionInThePlaceOfTheTrees) {
    constexpr std::size_t kCount = 300;
    const Ring ring(kCount);
    const std::vector<double> Y = test::random_values(2 * kCount, 34, 5.0);
    SparseForces tree(kCount, 2, std::make_unique<TreeRepulsion>(kCount, 2, 1e-12));
    SparseForces pairs(kCount, 2, std::make_unique<test::AllPairsRepulsion>(kCount, 2));
    std::vector<double> expected(Y.size());
    std::vector<double> dY(Y.size());
    const double cost = tree.costAndGradient(ring.view(), Y.data(), expected.data());
    EXPECT_NEAR(pairs.costAndGradient(ring.view(), Y.data(), dY.data()), cost, 1e-10);
    for (std::size_t i = 0; i < Y.size(); ++i) {
        EXPECT_NEAR(dY[i], expected[i], 1e-14);
    }
}

}  // namespace
}  // namespace ovik
