#include "stats/median.h"

#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

double median_of(std::vector<double> values) {
    return median(values);
}

TEST(Median, IsTheMiddleValueOrTheMeanOfTheTwoInTheMiddle) {
    EXPECT_EQ(median_of({7.0}), 7.0);
    EXPECT_EQ(median_of({7.0, 2.0}), 4.5);
    EXPECT_EQ(median_of({7.0, -1.0, 2.0}), 2.0);
    EXPECT_EQ(median_of({7.0, -1.0, 2.0, 3.0}), 2.5);
    EXPECT_EQ(median_of({5.0, 5.0, 5.0, 1.0}), 5.0);
}

}  // namespace
}  // namespace ovik
