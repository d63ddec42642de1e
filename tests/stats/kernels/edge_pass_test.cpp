#include "stats/kernels/edge_pass.h"

#include <cfloat>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class EdgeKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const EdgeKernels& kernels = edge_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         EdgeKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

/// A matrix whose row n has n entries, in an embedding of as many points.
struct Rows {
    Rows(std::size_t N, std::size_t dims) : Y(test::random_values(N * dims, 81)), dims(dims) {
        starts.push_back(0);
        for (std::size_t n = 0; n < N; ++n) {
            for (std::size_t i = 0; i < n; ++i) {
                columns.push_back(static_cast<unsigned int>((n + 3 * i + 1) % N));
                values.push_back(1e-3 / static_cast<double>(i + 1));
            }
            starts.push_back(static_cast<unsigned int>(columns.size()));
        }
    }

    [[nodiscard]] EdgeView view() const {
        return {starts.data(), columns.data(), values.data(), Y.data(), dims};
    }

    std::vector<double> Y;
    std::size_t dims;
    std::vector<unsigned int> starts;
    std::vector<unsigned int> columns;
    std::vector<double> values;
};

/// Of a row: 1 + squared distance of the points of an entry.
double inverse_q(const Rows& rows, std::size_t n, std::size_t entry) {
    double squared_distance = 0.0;
    for (std::size_t d = 0; d < rows.dims; ++d) {
        const double difference =
            rows.Y[n * rows.dims + d] - rows.Y[rows.columns[entry] * rows.dims + d];
        squared_distance += difference * difference;
    }
    return 1.0 + squared_distance;
}

std::vector<double> plain_forces(const Rows& rows, double start) {
    std::vector<double> forces(rows.Y.size(), start);
    for (std::size_t n = 0; n + 1 < rows.starts.size(); ++n) {
        for (std::size_t i = rows.starts[n]; i < rows.starts[n + 1]; ++i) {
            const double factor = rows.values[i] * (1.0 / inverse_q(rows, n, i));
            for (std::size_t d = 0; d < rows.dims; ++d) {
                forces[n * rows.dims + d] +=
                    factor * (rows.Y[n * rows.dims + d] - rows.Y[rows.columns[i] * rows.dims + d]);
            }
        }
    }
    return forces;
}

// Rows of 0 to 67 entries, in dimensions of their own loops and in others.
constexpr std::size_t kRows = 68;
constexpr std::size_t kDims[] = {1, 2, 3, 4};

TEST_P(EdgeKernelsTest, AddTheForcesOfAPlainLoopForEveryNumberOfEntries) {
    for (const std::size_t dims : kDims) {
        const Rows rows(kRows, dims);
        std::vector<double> forces(rows.Y.size(), 0.5);
        kernels.pass(rows.view(), 0, kRows, forces.data(), nullptr);
        EXPECT_EQ(forces, plain_forces(rows, 0.5)) << dims << " dimensions";
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
        kernels.pass(rows.view(), 0, kRows, forces.data(), costs.data());
        kernels.pass(rows.view(), 0, kRows, nullptr, costs_alone.data());
        scalar.pass(rows.view(), 0, kRows, expected_forces.data(), expected.data());
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
        kernels.pass(rows.view(), 0, kRows, nullptr, costs.data());
        for (std::size_t n = 0; n < kRows; ++n) {
            double log_sum = 0.0;
            double weight_sum = 0.0;
            for (std::size_t i = rows.starts[n]; i < rows.starts[n + 1]; ++i) {
                const double p = rows.values[i];
                log_sum += p * std::log((p + DBL_MIN) * inverse_q(rows, n, i));
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
    kernels.pass(rows.view(), 20, 25, forces.data(), costs.data());
    for (std::size_t n = 0; n < kRows; ++n) {
        EXPECT_EQ(costs[n].weight_sum != -1.0, n >= 20 && n < 25) << n;
        EXPECT_EQ(forces[2 * n] != -1.0, n >= 20 && n < 25) << n;
    }
}

TEST_P(EdgeKernelsTest, MarkRowsWhoseLogarithmsNeedTheGuard) {
    Rows rows(kRows, 2);
    rows.Y[2 * 10] = 1e120;
    std::vector<RowCost> costs(kRows);
    kernels.pass(rows.view(), 0, kRows, nullptr, costs.data());
    EXPECT_TRUE(std::isnan(costs[10].log_sum));
    EXPECT_FALSE(std::isnan(costs[10].weight_sum));
    EXPECT_EQ(costs[0].log_sum, 0.0);
}

}  // namespace
}  // namespace ovik
