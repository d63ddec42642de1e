#include "stats/sliced_attraction.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "stats/joint_matrix.h"
#include "stats/row_attraction.h"

#include "tests/support/malloc_copy.h"
#include "tests/support/printed.h"
#include "tests/support/random_points.h"
#include "tests/support/sparse_rows.h"

namespace ovik {
namespace {

using Rows = test::SparseRows;

TEST(SlicedAttraction, OfNoEntriesCostsNothingWhateverTheNormalisation) {
    const unsigned int row_P[2] = {0, 0};
    SlicedAttraction attraction(
        SlicedMatrix({row_P, nullptr, nullptr}, 1, 2), 2, platform_elementary().log);
    const double Y[2] = {1.0, 2.0};
    double forces[2] = {7.0, 7.0};
    attraction.pass(Y, {0, 1}, forces, true);
    EXPECT_EQ(forces[0], 0.0);
    EXPECT_EQ(forces[1], 0.0);
    // The normalisation of a single point is 0.
    EXPECT_EQ(attraction.cost(Y, 0.0), 0.0);
    EXPECT_FALSE(std::signbit(attraction.cost(Y, 0.0)));
}

TEST(SlicedAttraction, PrintsACostOfNothingWithTheSignOfThePlainSum) {
    // Two points with each other's whole similarity: p = 0.5 and q / Z = 0.5, for any distance.
    const Rows rows{{0, 1, 2}, {1, 0}, {0.5, 0.5}};
    SlicedAttraction attraction(SlicedMatrix(rows.view(), 2, 1), 1, platform_elementary().log);
    for (const double distance : {0.0, 0.1, 0.3, 0.7, 1.1, 2.3, 10.0, 1234.5}) {
        const double Y[2] = {0.0, distance};
        const double q = 1.0 / (1.0 + distance * distance);
        attraction.pass(Y, {0, 2}, nullptr, true);
        double plain = 0.0;
        for (int entry = 0; entry < 2; ++entry) {
            plain += 0.5 * std::log((0.5 + 2.2250738585072014e-308) /
                                    (q / (q + q) + 2.2250738585072014e-308));
        }
        EXPECT_EQ(test::printed(attraction.cost(Y, q + q)), test::printed(plain)) << distance;
    }
}

TEST(SlicedAttraction, PullsAlongTheEntriesInTheirOrder) {
    const Rows rows{{0, 2, 2, 3}, {1, 2, 0}, {0.25, 0.5, 0.125}};
    const std::vector<double> Y = test::random_values(6, 3);
    SlicedAttraction attraction(SlicedMatrix(rows.view(), 3, 2), 2, platform_elementary().log);
    std::vector<double> forces(6, 7.0);
    attraction.pass(Y.data(), {0, 3}, forces.data(), false);
    for (std::size_t n = 0; n < 3; ++n) {
        double expected[2] = {};
        for (unsigned int i = rows.row_P[n]; i < rows.row_P[n + 1]; ++i) {
            const double dx = Y[2 * n] - Y[std::size_t{rows.col_P[i]} * 2];
            const double dy = Y[2 * n + 1] - Y[std::size_t{rows.col_P[i]} * 2 + 1];
            const double q = 1.0 / (1.0 + (0.0 + dx * dx + dy * dy));
            expected[0] += rows.val_P[i] * q * dx;
            expected[1] += rows.val_P[i] * q * dy;
        }
        EXPECT_EQ(forces[2 * n], expected[0]) << n;
        EXPECT_EQ(forces[2 * n + 1], expected[1]) << n;
    }
}

/// The cost of the definition, entry by entry.
double plain_cost(const Rows& rows, const std::vector<double>& Y, double Z) {
    double cost = 0.0;
    for (std::size_t n = 0; n + 1 < rows.row_P.size(); ++n) {
        for (unsigned int i = rows.row_P[n]; i < rows.row_P[n + 1]; ++i) {
            const double dx = Y[2 * n] - Y[std::size_t{rows.col_P[i]} * 2];
            const double dy = Y[2 * n + 1] - Y[std::size_t{rows.col_P[i]} * 2 + 1];
            const double q = 1.0 / (1.0 + (dx * dx + dy * dy));
            cost += rows.val_P[i] * std::log((rows.val_P[i] + DBL_MIN) / (q / Z + DBL_MIN));
        }
    }
    return cost;
}

/// Three entries a row, between points in the plane.
Rows three_a_row(std::size_t N) {
    Rows rows{{0}, {}, {}};
    for (std::size_t n = 0; n < N; ++n) {
        for (std::size_t step = 1; step <= 3; ++step) {
            rows.col_P.push_back(static_cast<unsigned int>((n + 5 * step) % N));
            rows.val_P.push_back(1.0 / static_cast<double>(6 * N * step));
        }
        rows.row_P.push_back(static_cast<unsigned int>(rows.col_P.size()));
    }
    return rows;
}

TEST(SlicedAttraction, CostsWhatTheEntriesDoWithinItsBound) {
    constexpr std::size_t kCount = 500;
    const Rows rows = three_a_row(kCount);
    SlicedAttraction attraction(SlicedMatrix(rows.view(), kCount, 2), 2, platform_elementary().log);
    // The last two are beyond what the sums over the slices hold for.
    for (const double scale : {1e-4, 1.0, 100.0, 1e8, 1e90, 1e120, 1e200}) {
        const std::vector<double> Y = test::random_values(2 * kCount, 5, scale);
        for (const double Z : {1e-3, 1.0, 2e5}) {
            attraction.pass(Y.data(), {0, kCount}, nullptr, true);
            const double expected = plain_cost(rows, Y, Z);
            EXPECT_NEAR(attraction.cost(Y.data(), Z),
                        expected,
                        2e-12 * attraction.matrix().sums().weight + 1e-14 * std::fabs(expected))
                << scale << " " << Z;
        }
    }
}

TEST(SlicedAttraction, FormsTheCostAnewWhenTheAffinitiesChange) {
    constexpr std::size_t kCount = 100;
    Rows rows = three_a_row(kCount);
    SlicedAttraction attraction(SlicedMatrix(rows.view(), kCount, 2), 2, platform_elementary().log);
    const std::vector<double> Y = test::random_values(2 * kCount, 6, 3.0);
    const auto cost = [&] {
        attraction.pass(Y.data(), {0, kCount}, nullptr, true);
        return attraction.cost(Y.data(), 1e3);
    };
    EXPECT_NEAR(cost(), plain_cost(rows, Y, 1e3), 2e-12);
    attraction.matrix().multiply(12.0);
    for (double& p : rows.val_P) {
        p *= 12.0;
    }
    EXPECT_NEAR(cost(), plain_cost(rows, Y, 1e3), 24e-12);
    attraction.matrix().divide(12.0);
    for (double& p : rows.val_P) {
        p /= 12.0;
    }
    EXPECT_NEAR(cost(), plain_cost(rows, Y, 1e3), 2e-12);
}

TEST(SlicedAttraction, TellsTheCostOfEachRow) {
    const Rows rows{{0, 2, 2, 3}, {1, 2, 0}, {0.25, 0.5, 0.125}};
    const std::vector<double> Y = test::random_values(6, 3);
    SlicedAttraction attraction(SlicedMatrix(rows.view(), 3, 2), 2, platform_elementary().log);
    std::vector<double> costs(3, 7.0);
    attraction.rowCosts(Y.data(), 1.5, costs.data());
    EXPECT_EQ(costs[1], 0.0);
    EXPECT_DOUBLE_EQ(costs[0], plain_cost({{0, 2, 2, 2}, {1, 2}, {0.25, 0.5}}, Y, 1.5));
    EXPECT_DOUBLE_EQ(costs[2], plain_cost({{0, 0, 0, 1}, {0}, {0.125}}, Y, 1.5));
    std::vector<double> of_rows(3, 7.0);
    RowAttraction(rows.view(), 3, 2).rowCosts(Y.data(), 1.5, of_rows.data());
    EXPECT_EQ(of_rows, costs);
}

TEST(SlicedAttraction, TellsTheCostOfEachRowWhateverTheOrderInWhichTheyLie) {
    constexpr std::size_t kPoints = 20;
    constexpr std::size_t kNeighbours = 3;
    std::vector<unsigned int> columns;
    std::vector<double> values;
    for (std::size_t i = 0; i < kPoints * kNeighbours; ++i) {
        const std::size_t step = 1 + 2 * (i % kNeighbours);
        columns.push_back(static_cast<unsigned int>((i / kNeighbours + step) % kPoints));
        values.push_back(1.0 / static_cast<double>(2 + i));
    }
    const auto conditional = [&] {
        ConditionalRows rows;
        rows.rows = kPoints;
        rows.row_length = kNeighbours;
        rows.form = ValueForm::Double;
        rows.columns = test::malloc_copy(columns);
        rows.doubles = test::malloc_copy(values);
        return rows;
    };
    std::vector<std::uint32_t> backwards(kPoints);
    std::iota(backwards.rbegin(), backwards.rend(), 0U);
    SlicedAttraction plain(joint_matrix(conditional(), 2), 2, platform_elementary().log);
    SlicedAttraction reordered(
        joint_matrix(conditional(), 2, test::malloc_copy(backwards)), 2, platform_elementary().log);
    ASSERT_TRUE(reordered.matrix().isReordered());
    const std::vector<double> Y = test::random_values(2 * kPoints, 3);
    std::vector<double> expected(kPoints);
    std::vector<double> costs(kPoints);
    plain.rowCosts(Y.data(), 1.5, expected.data());
    reordered.rowCosts(Y.data(), 1.5, costs.data());
    EXPECT_EQ(costs, expected);
    const std::vector<double> sums(kPoints, 2.5);
    plain.rowMisfits(Y.data(), sums.data(), expected.data());
    reordered.rowMisfits(Y.data(), sums.data(), costs.data());
    EXPECT_EQ(costs, expected);
}

}  // namespace
}  // namespace ovik
