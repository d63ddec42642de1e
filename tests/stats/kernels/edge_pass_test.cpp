#include "stats/kernels/edge_pass.h"

#include <cfloat>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/embedded_rows.h"
#include "tests/support/instruction_sets.h"

namespace ovik {
namespace {

class EdgeKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const EdgeKernels& kernels = edge_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         EdgeKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

using Rows = test::EmbeddedRows;

EdgeView view_of(const Rows& rows) {
    return {rows.starts.data(), rows.columns.data(), rows.values.data(), rows.Y.data(), rows.dims};
}

// Rows of 0 to 67 entries, in dimensions of their own loops and in others.
constexpr std::size_t kRows = 68;
constexpr std::size_t kDims[] = {1, 2, 3, 4};

TEST_P(EdgeKernelsTest, AddTheForcesOfAPlainLoopForEveryNumberOfEntries) {
    for (const std::size_t dims : kDims) {
        const Rows rows(kRows, dims);
        std::vector<double> forces(rows.Y.size(), 0.5);
        kernels.pass(view_of(rows), 0, kRows, forces.data(), nullptr);
        EXPECT_EQ(forces, rows.forces(0.5)) << dims << " dimensions";
    }
}

TEST_P(EdgeKernelsTest, GiveTheBitsOfTheScalarOnesForEveryNumberOfEntries) {
    const EdgeKernels& scalar = edge_kernels(InstructionSet::Scalar);
    for (const std::size_t dims : kDims) {
        const Rows rows(kRows, dims);
        std::vector<double> forces(rows.Y.size(), 0.0);
        std::vector<double> expected_forces = forces;
        std::vector<RowCost> costs(kRows);
        std::vector<RowCost> costs_alone(kRows);
        std::vector<RowCost> expected(kRows);
        kernels.pass(view_of(rows), 0, kRows, forces.data(), costs.data());
        kernels.pass(view_of(rows), 0, kRows, nullptr, costs_alone.data());
        scalar.pass(view_of(rows), 0, kRows, expected_forces.data(), expected.data());
        EXPECT_EQ(forces, expected_forces);
        for (std::size_t n = 0; n < kRows; ++n) {
            EXPECT_EQ(costs[n].log_sum, expected[n].log_sum);
            EXPECT_EQ(costs[n].weight_sum, expected[n].weight_sum);
            EXPECT_EQ(costs_alone[n].log_sum, expected[n].log_sum);
            EXPECT_EQ(costs_alone[n].weight_sum, expected[n].weight_sum);
        }
    }
}

TEST_P(EdgeKernelsTest, AddUpTheCostOfARow) {
    for (const std::size_t dims : kDims) {
        const Rows rows(kRows, dims);
        std::vector<RowCost> costs(kRows);
        kernels.pass(view_of(rows), 0, kRows, nullptr, costs.data());
        for (std::size_t n = 0; n < kRows; ++n) {
            double log_sum = 0.0;
            double weight_sum = 0.0;
            for (std::size_t i = rows.starts[n]; i < rows.starts[n + 1]; ++i) {
                const double p = rows.values[i];
                log_sum += p * std::log((p + DBL_MIN) * rows.inverseQ(n, i));
                weight_sum += p;
            }
            EXPECT_NEAR(costs[n].log_sum, log_sum, 1e-13 * std::fabs(log_sum));
            EXPECT_NEAR(costs[n].weight_sum, weight_sum, 1e-13 * weight_sum);
        }
    }
}

TEST_P(EdgeKernelsTest, TouchNoOtherRows) {
    const Rows rows(kRows, 2);
    std::vector<double> forces(rows.Y.size(), -1.0);
    std::vector<RowCost> costs(kRows, {-1.0, -1.0});
    kernels.pass(view_of(rows), 20, 25, forces.data(), costs.data());
    for (std::size_t n = 0; n < kRows; ++n) {
        EXPECT_EQ(costs[n].weight_sum != -1.0, n >= 20 && n < 25) << n;
        EXPECT_EQ(forces[2 * n] != -1.0, n >= 20 && n < 25) << n;
    }
}

TEST_P(EdgeKernelsTest, MarkRowsWhoseLogarithmsNeedTheGuard) {
    Rows rows(kRows, 2);
    rows.Y[2 * 10] = 1e120;
    std::vector<RowCost> costs(kRows);
    kernels.pass(view_of(rows), 0, kRows, nullptr, costs.data());
    EXPECT_TRUE(std::isnan(costs[10].log_sum));
    EXPECT_FALSE(std::isnan(costs[10].weight_sum));
    EXPECT_EQ(costs[0].log_sum, 0.0);
}

}  // namespace
}  // namespace ovik
