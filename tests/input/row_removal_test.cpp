#include "input/row_removal.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Rows "A", "B" and so on of two columns, on every second line.
InspectedMatrix matrix_of(const std::vector<double>& values) {
    InspectedMatrix matrix;
    matrix.report.rows = values.size() / 2;
    matrix.report.columns = 2;
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        matrix.row_names.emplace_back(1, static_cast<char>('A' + n));
        matrix.row_lines.push_back(2 * n + 2);
    }
    matrix.values.reset(new double[values.size()]);
    std::copy(values.begin(), values.end(), matrix.values.get());
    return matrix;
}

std::vector<double> values_of(const InspectedMatrix& matrix) {
    const double* const values = matrix.values.get();
    return {values, values + matrix.report.rows * matrix.report.columns};
}

TEST(RowRemoval, TakesNamesLinesAndLabelsAlong) {
    InspectedMatrix matrix = matrix_of({1, 2, 3, 4, 5, 6, 7, 8});
    std::vector<std::string> labels = {"a", "b", "c", "d"};
    leave_rows_out([](std::size_t row) { return row == 0 || row == 2; }, matrix, labels);
    EXPECT_EQ(matrix.report.rows, 2U);
    EXPECT_THAT(values_of(matrix), ElementsAre(3, 4, 7, 8));
    EXPECT_THAT(matrix.row_names, ElementsAre("B", "D"));
    EXPECT_THAT(matrix.row_lines, ElementsAre(4U, 8U));
    EXPECT_THAT(labels, ElementsAre("b", "d"));
}

TEST(RowRemoval, LeavesAllOrNone) {
    InspectedMatrix matrix = matrix_of({1, 2, 3, 4});
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
