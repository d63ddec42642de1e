#include "input/inspected_matrix.h"

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

MatrixReport report_on_names(std::vector<std::string> names) {
    InspectedMatrix matrix;
    matrix.report.rows = names.size();
    matrix.row_names = std::move(names);
    note_duplicate_names(matrix);
    return matrix.report;
}

TEST(NoteDuplicateNames, ListsTheFirstThree) {
    const MatrixReport report = report_on_names({"A", "B", "A", "C", "B", "A", "C"});
    EXPECT_EQ(report.duplicate_names, 4U);
    EXPECT_THAT(report.first_duplicate_names, ElementsAre("A", "B", "A"));
}

TEST(NoteDuplicateNames, FindsNoneAmongNamesThatDifferOrAreEmpty) {
    const MatrixReport report = report_on_names({"A", "", "B", "", "a"});
    EXPECT_EQ(report.duplicate_names, 0U);
    EXPECT_THAT(report.first_duplicate_names, IsEmpty());
}

TEST(NoteInfiniteValues, PlacesThemByRowAndColumn) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    InspectedMatrix matrix;
    matrix.report.rows = 2;
    matrix.report.columns = 3;
    matrix.values.reset(new double[6]{
        0.0, std::numeric_limits<double>::quiet_NaN(), 1e308, 1.0, -kInfinity, kInfinity});
    note_infinite_values(matrix);
    EXPECT_EQ(matrix.report.not_finite.count, 2U);
    EXPECT_EQ(matrix.report.not_finite.places.at(0).line, 0U);
    EXPECT_EQ(matrix.report.not_finite.places.at(0).row, "2");
    EXPECT_EQ(matrix.report.not_finite.places.at(0).field, 2U);
    EXPECT_EQ(matrix.report.not_finite.places.at(0).text, "-inf");
    EXPECT_EQ(matrix.report.not_finite.places.at(1).field, 3U);
}

TEST(NoteInfiniteValues, FindsNoneWhereRowsOfDifferentLengthLeaveNoValues) {
    InspectedMatrix matrix;
    matrix.report.rows = 2;
    matrix.report.columns = 3;
    note_infinite_values(matrix);
    EXPECT_EQ(matrix.report.not_finite.count, 0U);
}

}  // namespace
}  // namespace ovik
