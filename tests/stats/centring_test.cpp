#include "stats/centring.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tsne.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

TEST(ZeroMean, EqualsThePlainProgramBitForBit) {
    constexpr std::size_t kRows = 20011;
    const std::vector<double> values = test::random_values(kRows * 3, 40, 100.0);
    std::vector<double> expected = values;
    plain::centre_columns(expected, kRows, 3);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        std::vector<double> actual = values;
        TSNE<double>::zeroMean(actual.data(), kRows, 3);
        EXPECT_EQ(actual, expected);
    }
}

TEST(ZeroMean, MultipliesByTheReciprocalOfTheRows) {
    // 3 * 0.1 / 3 and (3 * 0.1) * (1 / 3) differ in the last place.
    std::vector<double> values = {0.1, 0.1, 0.1};
    const double sum = 0.1 + 0.1 + 0.1;
    ASSERT_NE(sum / 3.0, sum * (1.0 / 3.0));
    zero_mean(values.data(), 3, 1);
    EXPECT_EQ(values[0], 0.1 - sum * (1.0 / 3.0));
}

TEST(ZeroMean, ZeroesASingleRow) {
    std::vector<double> row = {0.1, -7.3, 1e300};
    zero_mean(row.data(), 1, 3);
    EXPECT_EQ(row, std::vector<double>(3, 0.0));
}

TEST(ZeroMean, TouchesNothingWithoutRowsOrColumns) {
    double untouched = 4.0;
    TSNE<double>::zeroMean(&untouched, 0, 3);
    TSNE<double>::zeroMean(&untouched, 3, 0);
    EXPECT_EQ(untouched, 4.0);
}

TEST(CentreAndScale, EqualsThePlainProgramBitForBit) {
    const std::vector<double> values = test::random_values(997 * 7, 41, 13.0);
    std::vector<double> expected = values;
    plain::normalise_input(expected, 997, 7);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        std::vector<double> actual = values;
        const InputScale scale = centre_and_scale({actual.data(), 997, 7});
        EXPECT_EQ(actual, expected);
        ASSERT_EQ(scale.means.size(), 7U);
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ((values[i] - scale.means[i % 7]) * scale.factor, actual[i]);
        }
    }
}

TEST(CentreAndScale, HasNoScaleForEqualRows) {
    std::vector<double> values(6, 5.0);
    centre_and_scale({values.data(), 3, 2});
    for (const double value : values) {
        EXPECT_TRUE(std::isnan(value));
    }
}

}  // namespace
}  // namespace ovik
