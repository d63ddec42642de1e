#include "stats/sparse_objective.h"

#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tree_repulsion.h"

#include "tests/plain/plain_sptree.h"
#include "tests/support/all_pairs_repulsion.h"
#include "tests/support/random_points.h"
#include "tests/support/ring_matrix.h"

namespace ovik {
namespace {

using test::Ring;

constexpr std::size_t kCount = 200;

SparseObjective objective_of(const Ring& ring, std::unique_ptr<Repulsion> repulsion) {
    const std::size_t N = ring.row_P.size() - 1;
    return {SlicedAttraction(SlicedMatrix(ring.view(), N, 2), 2, platform_elementary().log),
            SparseForces(N, 2, std::move(repulsion))};
}

/// Gradient and cost as the plain program has them, by each of the operations.
void expect_plain_values(SparseObjective& objective,
                         const plain::SparseRows& rows,
                         const std::vector<double>& Y) {
    const std::vector<double> gradient = plain::barnes_hut_gradient(rows, Y, 2, 0.5);
    const double cost = plain::barnes_hut_cost(rows, Y, 2, 0.5);
    std::vector<double> dY(Y.size(), -7.0);
    objective.gradient(Y.data(), dY.data());
    EXPECT_EQ(dY, gradient);
    dY.assign(dY.size(), -7.0);
    const double both = objective.costAndGradient(Y.data(), dY.data());
    EXPECT_EQ(dY, gradient);
    EXPECT_NEAR(both, cost, 1e-12 * std::fabs(cost));
    EXPECT_EQ(objective.cost(Y.data()), both);
}

TEST(SparseObjective, EqualsThePlainProgramThroughExaggeration) {
    const Ring ring(kCount);
    plain::SparseRows rows = test::rows_of(ring);
    const std::vector<double> Y = test::random_values(2 * kCount, 421, 5.0);
    SparseObjective objective = objective_of(ring, std::make_unique<TreeRepulsion>(kCount, 2, 0.5));
    expect_plain_values(objective, rows, Y);
    objective.exaggerate(12.0);
    for (auto& row : rows) {
        for (auto& entry : row) {
            entry.second *= 12.0;
        }
    }
    expect_plain_values(objective, rows, Y);
    objective.endExaggeration(12.0);
    for (auto& row : rows) {
        for (auto& entry : row) {
            entry.second /= 12.0;
        }
    }
    expect_plain_values(objective, rows, Y);
    // Another embedding after the first.
    expect_plain_values(objective, rows, test::random_values(2 * kCount, 422, 50.0));
}

TEST(SparseObjective, TakesAnyRepulsion) {
    const Ring ring(kCount);
    const std::vector<double> Y = test::random_values(2 * kCount, 423, 5.0);
    SparseObjective pairs =
        objective_of(ring, std::make_unique<test::AllPairsRepulsion>(kCount, 2));
    SparseObjective tree = objective_of(ring, std::make_unique<TreeRepulsion>(kCount, 2, 1e-12));
    std::vector<double> dY(Y.size());
    std::vector<double> expected(Y.size());
    EXPECT_NEAR(pairs.costAndGradient(Y.data(), dY.data()),
                tree.costAndGradient(Y.data(), expected.data()),
                1e-10);
    for (std::size_t i = 0; i < Y.size(); ++i) {
        EXPECT_NEAR(dY[i], expected[i], 1e-14);
    }
}

TEST(SparseObjective, ReportsDensityAndFractionsOfASecond) {
    // Three entries in each of its rows.
    const Ring ring(8);
    const SparseObjective objective =
        objective_of(ring, std::make_unique<test::AllPairsRepulsion>(8, 2));
    EXPECT_EQ(objective.report(2'500'000),
              "Got sparsity 0.375000 for input similarities in 2.50 seconds!");
    EXPECT_EQ(objective.report(0).find("Got sparsity 0.375000 for input similarities in 0.0"), 0U);
}

}  // namespace
}  // namespace ovik
