#include "input/matrix_checks.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/refusal.h"

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(CheckMatrix, RefusesRowsThatMakeNoMatrix) {
    MatrixReport ragged;
    ragged.rows = 9;
    ragged.columns = 4;
    ragged.ragged_rows = 2;
    ragged.first_ragged_rows = {{5, "A", 1}, {7, "B", 6}};
    MatrixReport very_ragged = ragged;
    very_ragged.ragged_rows = 4;
    very_ragged.first_ragged_rows.push_back({8, "C", 0});
    MatrixReport few;
    few.rows = 2;
    MatrixReport many;
    many.rows = std::size_t{1} << 31U;
    MatrixReport on_line;
    on_line.rows = 3;
    on_line.not_finite = {1, {{7, "A", 3, "1e999"}}};
    MatrixReport in_array;
    in_array.rows = 3;
    in_array.not_finite = {4, {{0, "12", 3, "-inf"}}};

    const struct {
        MatrixReport report;
        const char* reason;
    } kCases[] = {
        {ragged,
         "m:5: row \"A\" has 1 value, but the first row has 4 (2 such rows, also line 7)\n"},
        {very_ragged, "but the first row has 4 (4 such rows, also line 7 line 8, ...)\n"},
        {few, "m: has 2 rows, and an embedding needs at least 3\n"},
        {many, "m: has 2147483648 rows, and more than 2147483647 cannot be embedded\n"},
        {on_line,
         "m:7: field 3 of row \"A\" is \"1e999\", which is not a finite number (1 such field)\n"},
        {in_array,
         "m: column 3 of row 12 is \"-inf\", which is not a finite number (4 such fields)\n"},
    };

    for (const auto& each : kCases) {
        EXPECT_THAT(test::refusal_of([&] { check_matrix("m", each.report); }),
                    HasSubstr(each.reason));
    }
    MatrixReport good;
    good.rows = 3;
    EXPECT_EQ(test::refusal_of([&] { check_matrix("m", good); }), "");
}

TEST(CheckValues, RefusesWhatCannotBeEmbedded) {
    const struct {
        std::vector<double> values;
        const char* reason;
    } kCases[] = {
        {{1, 2, 1, 2, 1, 2}, "m: all rows hold the same values"},
        {{1, 2, 1, 2, 1, 1.1e300}, "m: the values are too large"},
        {{1, 2, 1, 2, 1, -1.1e300}, "m: the values are too large"},
        {{0, 0, 0, 0, 0, 1e-310}, "m: the values are too close to one another"},
    };

    const auto refusal_of = [](const std::vector<double>& values) {
        InspectedMatrix matrix;
        matrix.report.rows = 3;
        matrix.report.columns = 2;
        matrix.values.reset(new double[6]);
        std::copy(values.begin(), values.end(), matrix.values.get());
        return test::refusal_of([&] { check_values("m", matrix); });
    };
    for (const auto& [values, reason] : kCases) {
        EXPECT_THAT(refusal_of(values), HasSubstr(reason));
    }
    EXPECT_EQ(refusal_of({1, 2, 1, 2, 1, 1e300}), "");
    EXPECT_EQ(refusal_of({0, 0, 0, 0, 0, 1e-299}), "");
}

TEST(MatrixWarnings, TellWhatIsOdd) {
    MatrixReport unnamed;
    unnamed.unnamed = {1, {{5, "", 1, ""}}};
    MatrixReport duplicates;
    duplicates.duplicate_names = 4;
    duplicates.first_duplicate_names = {"A", "B", "A"};

    const struct {
        MatrixReport report;
        const char* warning;
    } kCases[] = {
        {unnamed, "m:5: the row has no name (1 such row in all)"},
        {duplicates, "m: 4 rows repeat the name of an earlier one (\"A\", \"B\", \"A\", ...)"},
    };

    for (const auto& [report, warning] : kCases) {
        SCOPED_TRACE(warning);
        const std::vector<std::string> warnings = matrix_warnings("m", report);
        ASSERT_EQ(warnings.size(), 1U);
        EXPECT_THAT(warnings[0], HasSubstr(warning));
    }
    EXPECT_THAT(matrix_warnings("m", MatrixReport()), IsEmpty());
}

}  // namespace
}  // namespace ovik
