#include "stats/sparse_forces.h"

#include <cmath>
#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/row_attraction.h"
#include "stats/sliced_attraction.h"
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

/// Expects what the plain program gives of each of the operations.
///
/// @return the cost
double expect_plain_values(SparseForces& forces,
                           Attraction& attraction,
                           const std::vector<double>& Y,
                           const std::vector<double>& gradient,
                           double expected_cost) {
    std::vector<double> dY(Y.size());
    forces.gradient(attraction, Y.data(), dY.data());
    EXPECT_EQ(dY, gradient);
    const double cost = forces.cost(attraction, Y.data());
    EXPECT_NEAR(cost, expected_cost, 1e-13 * std::fabs(expected_cost));
    dY.assign(dY.size(), -7.0);
    EXPECT_EQ(forces.costAndGradient(attraction, Y.data(), dY.data()), cost);
    EXPECT_EQ(dY, gradient);
    return cost;
}

TEST(SparseForces, EqualThePlainProgramAlongRowsAndSlices) {
    constexpr std::size_t kCount = 700;
    const Ring ring(kCount);
    const plain::SparseRows rows = test::rows_of(ring);
    for (const std::size_t dims : {1U, 2U, 3U, 5U}) {
        const std::vector<double> Y = test::random_values(dims * kCount, 33, 5.0);
        const std::vector<double> expected = plain::barnes_hut_gradient(rows, Y, dims, 0.5);
        const double expected_cost = plain::barnes_hut_cost(rows, Y, dims, 0.5);
        std::vector<double> costs_of_rows;
        std::vector<double> costs_of_slices;
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            for (const InstructionSet instructions : test::kInstructionSets) {
                const test::InstructionLimit limit(instructions);
                SparseForces forces(
                    kCount, dims, std::make_unique<TreeRepulsion>(kCount, dims, 0.5));
                RowAttraction along_rows(ring.view(), kCount, dims);
                SlicedAttraction along_slices(
                    SlicedMatrix(ring.view(), kCount, dims), dims, platform_elementary().log);
                costs_of_rows.push_back(
                    expect_plain_values(forces, along_rows, Y, expected, expected_cost));
                costs_of_slices.push_back(
                    expect_plain_values(forces, along_slices, Y, expected, expected_cost));
            }
        }
        EXPECT_THAT(costs_of_rows, testing::Each(costs_of_rows[0]));
        EXPECT_THAT(costs_of_slices, testing::Each(costs_of_slices[0]));
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
    RowAttraction attraction(ring.view(), kCount, 2);
    const double cost = tree.costAndGradient(attraction, Y.data(), expected.data());
    EXPECT_NEAR(pairs.costAndGradient(attraction, Y.data(), dY.data()), cost, 1e-10);
    for (std::size_t i = 0; i < Y.size(); ++i) {
        EXPECT_NEAR(dY[i], expected[i], 1e-14);
    }
}

}  // namespace
}  // namespace ovik
