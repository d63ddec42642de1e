#include "stats/sparse_forces.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tree_repulsion.h"

#include "tests/plain/plain_sptree.h"
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

/// Repulsion of all pairs, point by point: another one beside the tree's, as a reader may write it.
class AllPairsRepulsion : public Repulsion {
  public:
    AllPairsRepulsion(std::size_t N, std::size_t dims) : N_(N), dims_(dims) {}

    std::size_t prepare(const double* Y) override {
        Y_ = Y;
        return 0;
    }

    void preparePart(std::size_t /*part*/) override {}

    void finishPreparation() override {}

    void compute(IndexRange points, double* forces, double* z_terms) const override {
        for (std::size_t n = points.begin; n < points.end; ++n) {
            z_terms[n] = 0.0;
            std::fill_n(forces + n * dims_, dims_, 0.0);
            for (std::size_t m = 0; m < N_; ++m) {
                if (m != n) {
                    addPair(n, m, forces + n * dims_, z_terms[n]);
                }
            }
        }
    }

  private:
    void addPair(std::size_t n, std::size_t m, double* force, double& z_term) const {
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < dims_; ++d) {
            const double difference = Y_[n * dims_ + d] - Y_[m * dims_ + d];
            squared_distance += difference * difference;
        }
        const double q = 1.0 / (1.0 + squared_distance);
        z_term += q;
        for (std::size_t d = 0; d < dims_; ++d) {
            force[d] += q * q * (Y_[n * dims_ + d] - Y_[m * dims_ + d]);
        }
    }

    std::size_t N_;
    std::size_t dims_;
    const double* Y_ = nullptr;
};

TEST(SparseForces, TakeAnotherRepulsionInThePlaceOfTheTrees) {
    constexpr std::size_t kCount = 300;
    const Ring ring(kCount);
    const std::vector<double> Y = test::random_values(2 * kCount, 34, 5.0);
    SparseForces tree(kCount, 2, std::make_unique<TreeRepulsion>(kCount, 2, 1e-12));
    SparseForces pairs(kCount, 2, std::make_unique<AllPairsRepulsion>(kCount, 2));
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
