#include "input/row_totals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;

TEST(RowTotals, HaveATextThatReadsAsThemselves) {
    for (const char* const text : {"median", "10000", "0.5", "1000000"}) {
        EXPECT_EQ(text_of(row_total_of(text).value()), text);
    }
    for (const char* const text : {"", "0", "-1", "mean", "10k", "nan", "inf", " 1"}) {
        EXPECT_FALSE(row_total_of(text)) << text;
    }
}

TEST(RowTotals, ComeToANumber) {
    const RowScaling scaling = row_scaling({4.0, 0.0, 16.0}, RowTotal{8.0});
    EXPECT_THAT(scaling.factors, ElementsAre(2.0, 1.0, 0.5));
    EXPECT_EQ(scaling.empty_rows, 1U);
    EXPECT_EQ(scaling_text(scaling), "; the total is 8, and 1 row without counts stays as it is");
}

TEST(RowTotals, ComeToTheMedianOfThoseThatHaveCounts) {
    EXPECT_EQ(row_scaling({4.0, 0.0, 16.0, 5.0}, RowTotal{}).total, 5.0);
    EXPECT_EQ(row_scaling({4.0, 0.0, 16.0}, RowTotal{}).total, 10.0);
    const RowScaling nothing = row_scaling({0.0, 0.0}, RowTotal{});
    EXPECT_THAT(nothing.factors, ElementsAre(1.0, 1.0));
    EXPECT_EQ(scaling_text(row_scaling({3.0}, RowTotal{})), "; the total is 3");
}

}  // namespace
}  // namespace ovik
