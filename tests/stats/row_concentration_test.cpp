#include "stats/row_concentration.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_noise.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

TEST(RowConcentrations, ArePartsOfTheSquaredDistancesFromTheMedians) {
    // Medians 0, 10 and 5.5.
    const std::vector<double> X = {0.0,
                                   10.0,
                                   5.0,  // only half a step in the last column
                                   3.0,
                                   14.0,
                                   5.5,  // 9 and 16
                                   -1.0,
                                   9.0,
                                   6.5,  // all alike
                                   0.0,
                                   10.0,
                                   5.5};  // medians
    const std::vector<double> found = row_concentrations({X.data(), 4, 3});
    ASSERT_EQ(found.size(), 4U);
    EXPECT_DOUBLE_EQ(found[0], 1.0);
    EXPECT_DOUBLE_EQ(found[1], 16.0 / 25.0);
    EXPECT_DOUBLE_EQ(found[2], 1.0 / 3.0);
    EXPECT_EQ(found[3], 0.0);
}

TEST(RowConcentrations, AreThoseOfThePlainProgram) {
    for (const std::size_t rows : {1U, 2U, 40U, 41U}) {
        const std::vector<double> X = test::random_values(rows * 6, 3);
        EXPECT_EQ(row_concentrations({X.data(), rows, 6}), plain::concentrations(X, rows, 6));
    }
}

TEST(RowConcentrations, GetOutOfNoRange) {
    for (const double scale : {1e-200, 1e200}) {
        const std::vector<double> X = {0.0, 0.0, 3.0 * scale, 4.0 * scale, 0.0, 0.0};
        EXPECT_DOUBLE_EQ(row_concentrations({X.data(), 3, 2})[1], 16.0 / 25.0);
    }
    EXPECT_TRUE(row_concentrations({nullptr, 0, 3}).empty());
}

TEST(RowConcentrations, DoNotDependOnTheScaleOfAllColumns) {
    std::vector<double> X = test::random_values(60, 9);
    const std::vector<double> before = row_concentrations({X.data(), 10, 6});
    for (double& value : X) {
        value *= 4.0;
    }
    EXPECT_EQ(row_concentrations({X.data(), 10, 6}), before);
    EXPECT_GE(*std::min_element(before.begin(), before.end()), 1.0 / 6.0);
    EXPECT_LE(*std::max_element(before.begin(), before.end()), 1.0);
}

}  // namespace
}  // namespace ovik
