#include "input/row_removal.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/lettered_matrix.h"

namespace ovik {
namespace {

using test::lettered_matrix;
using test::values_of;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(RowRemoval, TakesNamesLinesAndLabelsAlong) {
    InspectedMatrix matrix = lettered_matrix({1, 2, 3, 4, 5, 6, 7, 8}, 2);
    matrix.filled = {false, true, true, false, false, false, false, true};
    std::vector<std::string> labels = {"a", "b", "c", "d"};
    leave_rows_out([](std::size_t row) { return row == 0 || row == 2; }, matrix, labels);
    EXPECT_EQ(matrix.report.rows, 2U);
    EXPECT_THAT(values_of(matrix), ElementsAre(3, 4, 7, 8));
    EXPECT_THAT(matrix.row_names, ElementsAre("B", "D"));
    EXPECT_THAT(matrix.row_lines, ElementsAre(4U, 8U));
    EXPECT_THAT(labels, ElementsAre("b", "d"));
    EXPECT_THAT(matrix.filled, ElementsAre(true, false, false, true));
}

TEST(RowRemoval, LeavesAllOrNone) {
    InspectedMatrix matrix = lettered_matrix({1, 2, 3, 4}, 2);
    std::vector<std::string> labels;
    leave_rows_out([](std::size_t) { return false; }, matrix, labels);
    EXPECT_THAT(values_of(matrix), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(labels, IsEmpty());
    leave_rows_out([](std::size_t) { return true; }, matrix, labels);
    EXPECT_EQ(matrix.report.rows, 0U);
    EXPECT_THAT(matrix.row_names, IsEmpty());
}

}  // namespace
}  // namespace ovik
