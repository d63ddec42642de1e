#include "stats/point_columns.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_tsne.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/toy_metrics.h"

namespace ovik {
namespace {

TEST(PointColumns, HoldTheCoordinatesOfAllPoints) {
    const std::vector<double> points = test::random_values(3 * 19, 41);
    const PointColumns columns(points.data(), 19, 3);
    EXPECT_EQ(columns.pointCount(), 19U);
    EXPECT_EQ(columns.dims(), 3U);
    for (std::size_t n = 0; n < 19; ++n) {
        for (std::size_t d = 0; d < 3; ++d) {
            EXPECT_EQ(columns.column(d)[n], points[n * 3 + d]);
        }
    }
}

TEST(PointColumns, GiveTheSquaresOfThePlainProgramForEveryNumberOfPoints) {
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        for (std::size_t N = 0; N <= 67; ++N) {
            const std::vector<double> points = test::random_values(N * 5, 42);
            const std::vector<double> expected = plain::squared_distances(points, N, 5);
            const PointColumns columns(points.data(), N, 5);
            for (std::size_t n = 0; n < N; ++n) {
                // The value behind the last must stay.
                std::vector<double> row(N + 1, -1.0);
                columns.squaredDistancesFrom(n, row.data());
                for (std::size_t m = 0; m < N; ++m) {
                    ASSERT_EQ(row[m], expected[n * N + m]);
                }
                ASSERT_EQ(row[N], -1.0);
            }
        }
    }
}

TEST(PointColumns, AreAtNoDistanceFromThemselvesEvenIfInfinite) {
    const double points[] = {std::numeric_limits<double>::infinity(), std::nan("")};
    const PointColumns columns(points, 2, 1);
    double row[2] = {};
    columns.squaredDistancesFrom(0, row);
    EXPECT_EQ(row[0], 0.0);
    EXPECT_TRUE(std::isnan(row[1]));
    columns.squaredDistancesFrom(1, row);
    EXPECT_EQ(row[1], 0.0);
}

TEST(PointColumns, MeasureByTheMetricThatTheyGet) {
    const double points[] = {0.0, 0.0, 3.0, -4.0};
    const PointColumns columns(points, 2, 2, test::kMaximumMetric);
    double row[2] = {};
    columns.squaredDistancesFrom(0, row);
    EXPECT_EQ(row[1], 16.0);
}

}  // namespace
}  // namespace ovik
