#include "input/text_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/matrix_line.h"

namespace ovik {
namespace {

std::size_t empty_behind(std::string_view line, char delimiter) {
    return empty_fields_behind(line, trimmed_matrix_line(line), delimiter);
}

TEST(LineViews, AreTheLinesWithoutTheirBreaks) {
    EXPECT_THAT(line_views("a\n\nb"), testing::ElementsAre("a", "", "b"));
    EXPECT_THAT(line_views(""), testing::IsEmpty());
}

TEST(EmptyFieldsBehind, AreThoseThatTrimmingAndSplittingLeaveOut) {
    EXPECT_EQ(empty_behind("a\tb", '\t'), 0U);
    EXPECT_EQ(empty_behind("a\tb\t\t", '\t'), 2U);
    // Tabs in front of a line end are not trimmed; splitting gives all but the last.
    EXPECT_EQ(empty_behind("a\tb\t\t\r\n", '\t'), 1U);
    // Nor are commas.
    EXPECT_EQ(empty_behind("a,b,,", ','), 1U);
    EXPECT_EQ(empty_behind("", ','), 0U);
}

TEST(DelimitersInFront, AreThoseBeforeTheFirstOtherCharacter) {
    EXPECT_EQ(delimiters_in_front("\t\ta\t", '\t'), 2U);
    EXPECT_EQ(delimiters_in_front("\t\t", '\t'), 2U);
    EXPECT_EQ(delimiters_in_front("a", '\t'), 0U);
}

}  // namespace
}  // namespace ovik
