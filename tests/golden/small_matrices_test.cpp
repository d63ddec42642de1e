#include "golden/small_matrices.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

namespace ovik::golden {
namespace {

TEST(SmallMatrix, HasTheValuesOfTheText) {
    const SmallMatrix matrix = small_matrix(Values::Chemostat, 250);
    EXPECT_EQ(matrix.columns, 36U);
    ASSERT_EQ(matrix.values.size(), 250U * 36U);
    // SFB2, the first row of the file.
    EXPECT_EQ(matrix.values[0], -0.24);
    EXPECT_EQ(matrix.values[35], 0.09);
}

TEST(SmallMatrix, HasItsFirstRows) {
    const SmallMatrix few = small_matrix(Values::Chemostat, 7);
    const SmallMatrix many = small_matrix(Values::Chemostat, 250);
    EXPECT_EQ(few.values.size(), 7U * 36U);
    EXPECT_TRUE(std::equal(few.values.begin(), few.values.end(), many.values.begin()));
    EXPECT_THROW(small_matrix(Values::Chemostat, 251), std::invalid_argument);
}

TEST(SmallMatrix, FillsWhatIsMissingWithMeansOfRows) {
    const SmallMatrix matrix = small_matrix(Values::Timecourses, 100);
    EXPECT_EQ(matrix.columns, 79U);
    double sum = 0.0;
    int count = 0;
    for (std::size_t c = 0; c < matrix.columns; ++c) {
        ASSERT_TRUE(std::isfinite(matrix.values[c]));
        if (c % 17 != 5) {
            sum += matrix.values[c];
            ++count;
        }
    }
    EXPECT_DOUBLE_EQ(matrix.values[5], sum / count);
}

TEST(SmallMatrix, LiesHalfWayBetweenRows) {
    const SmallMatrix whole = small_matrix(Values::Chemostat, 250);
    const SmallMatrix matrix = small_matrix(Values::Between, 600);
    EXPECT_EQ(matrix.columns, 12U);
    // Row 251 lies between the rows 1 and (7 * 251 + 1 + 1) % 250 = 9.
    EXPECT_EQ(matrix.values[251 * 12 + 2], 0.5 * (whole.values[36 + 2] + whole.values[9 * 36 + 2]));
}

TEST(SmallMatrix, HasLogarithmsOfCountsThatAddUpToATotal) {
    const SmallMatrix matrix = small_matrix(Values::Counts, 50);
    double total = 0.0;
    for (std::size_t c = 0; c < matrix.columns; ++c) {
        total += std::expm1(matrix.values[3 * matrix.columns + c]);
    }
    EXPECT_NEAR(total, 10000.0, 1e-6);
}

TEST(SmallMatrix, HasTheDistancesOfItsRows) {
    const SmallMatrix points = small_matrix(Values::Chemostat, 20);
    const SmallMatrix matrix = small_matrix(Values::Distances, 20);
    double sum = 0.0;
    for (std::size_t c = 0; c < points.columns; ++c) {
        sum += std::pow(points.values[2 * 36 + c] - points.values[11 * 36 + c], 2.0);
    }
    EXPECT_DOUBLE_EQ(matrix.values[2 * 20 + 11], std::sqrt(sum));
    EXPECT_EQ(matrix.values[2 * 20 + 11], matrix.values[11 * 20 + 2]);
    EXPECT_EQ(matrix.values[0], 0.0);
}

}  // namespace
}  // namespace ovik::golden
