#include "stats/row_attraction.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/printed.h"
#include "tests/support/random_points.h"
#include "tests/support/sparse_rows.h"

namespace ovik {
namespace {

using Rows = test::SparseRows;

TEST(RowAttraction, OfNoEntriesCostsNothingWhateverTheNormalisation) {
    const unsigned int row_P[2] = {0, 0};
    const SparseMatrixView P{row_P, nullptr, nullptr};
    const double Y[2] = {1.0, 2.0};
    RowAttraction attraction(P, 1, 2);
    double forces[2] = {7.0, 7.0};
    attraction.pass(Y, {0, 1}, forces, true);
    EXPECT_EQ(forces[0], 0.0);
    EXPECT_EQ(forces[1], 0.0);
    // The normalisation of a single point is 0.
    EXPECT_EQ(attraction.cost(Y, 0.0), 0.0);
    EXPECT_FALSE(std::signbit(attraction.cost(Y, 0.0)));
}

TEST(RowAttraction, PrintsACostOfNothingWithTheSignOfThePlainSum) {
    // Two points with each other's whole similarity: p = 0.5 and q / Z = 0.5, for any distance.
    const Rows rows{{0, 1, 2}, {1, 0}, {0.5, 0.5}};
    RowAttraction attraction(rows.view(), 2, 1);
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

TEST(RowAttraction, PullsAlongTheEntriesInTheirOrder) {
    const Rows rows{{0, 2, 2, 3}, {1, 2, 0}, {0.25, 0.5, 0.125}};
    const std::vector<double> Y = test::random_values(6, 3);
    RowAttraction attraction(rows.view(), 3, 2);
    std::vector<double> forces(6, 7.0);
    attraction.pass(Y.data(), {0, 3}, forces.data(), false);
    for (std::size_t n = 0; n < 3; ++n) {
        double expected[2] = {};
        for (unsigned int i = rows.row_P[n]; i < rows.row_P[n + 1]; ++i) {
            const double dx = Y[2 * n] - Y[2 * rows.col_P[i]];
            const double dy = Y[2 * n + 1] - Y[2 * rows.col_P[i] + 1];
            const double q = 1.0 / (1.0 + (0.0 + dx * dx + dy * dy));
            expected[0] += rows.val_P[i] * q * dx;
            expected[1] += rows.val_P[i] * q * dy;
        }
        EXPECT_EQ(forces[2 * n], expected[0]) << n;
        EXPECT_EQ(forces[2 * n + 1], expected[1]) << n;
    }
}

}  // namespace
}  // namespace ovik
