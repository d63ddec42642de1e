#include "input/missing_values.h"

#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/lettered_matrix.h"

namespace ovik {
namespace {

using test::values_of;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const double kMissing = std::nan("");

/// Rows of two columns.
InspectedMatrix matrix_of(const std::vector<double>& values) {
    InspectedMatrix matrix = test::lettered_matrix(values, 2);
    matrix.column_fields = {2, 3};
    return matrix;
}

void treat(MissingPolicy policy, InspectedMatrix& matrix, std::vector<std::string>& labels) {
    treat_missing("m", policy, count_missing(matrix), plainly_spelled, matrix, labels);
}

TEST(MissingPolicies, HaveNames) {
    EXPECT_EQ(missing_policy("zero"), MissingPolicy::Zero);
    EXPECT_EQ(missing_policy("row-mean"), MissingPolicy::RowMean);
    EXPECT_EQ(missing_policy("column-mean"), MissingPolicy::ColumnMean);
    EXPECT_EQ(missing_policy("drop"), MissingPolicy::Drop);
    EXPECT_EQ(missing_policy("error"), MissingPolicy::Error);
    for (const char* const name : {"zero", "row-mean", "column-mean", "drop", "error"}) {
        EXPECT_EQ(policy_name(*missing_policy(name)), name);
    }
    EXPECT_EQ(policy_name(MissingPolicy::Leave), "");
    for (const char* const name : {"", "Zero", "mean", "leave"}) {
        EXPECT_EQ(missing_policy(name), std::nullopt) << name;
    }
}

TEST(MissingValues, AreCountedByRowAndColumn) {
    const MissingCounts missing = count_missing(matrix_of({1, kMissing, kMissing, kMissing, 5, 6}));
    EXPECT_EQ(missing.count, 3U);
    EXPECT_THAT(missing.by_row, ElementsAre(1U, 2U, 0U));
    EXPECT_THAT(missing.by_column, ElementsAre(1U, 2U));
}

TEST(MissingValues, AreToldOfInOneSentence) {
    const InspectedMatrix one = matrix_of({1, kMissing, 3, 4, 5, 6});
    EXPECT_EQ(missing_summary(one, count_missing(one)),
              "1 of 6 values is missing, in 1 of 3 rows and 1 of 2 columns");
    const InspectedMatrix more = matrix_of({1, kMissing, kMissing, kMissing, 5, 6});
    EXPECT_EQ(missing_summary(more, count_missing(more)),
              "3 of 6 values are missing, in 2 of 3 rows and 2 of 2 columns");
}

TEST(MissingValues, ArePlacedByLineRowAndColumn) {
    InspectedMatrix matrix = matrix_of({1, kMissing, kMissing, kMissing, 5, kMissing});
    const MissingCounts missing = count_missing(matrix);
    EXPECT_EQ(missing_places(matrix, missing),
              "  line 2: row \"A\", field 3\n"
              "  line 4: row \"B\", field 2\n"
              "  line 4: row \"B\", field 3\n"
              "  ...\n"
              "  most in row \"B\": 2, and in field 3: 3\n"
              "  1 row has no number at all: row \"B\"\n");
    matrix.column_names = {"a", "b"};
    EXPECT_THAT(missing_places(matrix, missing),
                testing::StartsWith("  line 2: row \"A\", column \"b\" (field 3)\n"));
    matrix.row_lines.assign(3, 0);
    matrix.column_fields.clear();
    EXPECT_THAT(missing_places(matrix, missing),
                testing::StartsWith("  row \"A\", column \"b\" (column 2)\n"));
    matrix.column_names.clear();
    EXPECT_THAT(missing_places(matrix, missing), testing::StartsWith("  row \"A\", column 2\n"));
}

TEST(MissingValues, AreTreatedAsThePolicySays) {
    const std::vector<double> values = {1, kMissing, 3, 4, kMissing, 8, 6, 9};

    const struct {
        MissingPolicy policy;
        std::vector<double> expected;
        const char* words;
    } kCases[] = {
        {MissingPolicy::Zero, {1, 0, 3, 4, 0, 8, 6, 9}, "replaced by 0"},
        {MissingPolicy::RowMean, {1, 1, 3, 4, 8, 8, 6, 9}, "replaced by the means of their rows"},
        {MissingPolicy::ColumnMean,
         {1, 7, 3, 4, 10.0 / 3.0, 8, 6, 9},
         "replaced by the means of their columns"},
        {MissingPolicy::Drop, {3, 4, 6, 9}, "2 rows are left out, 2 remain"},
    };

    for (const auto& [policy, expected, words] : kCases) {
        SCOPED_TRACE(words);
        InspectedMatrix matrix = matrix_of(values);
        std::vector<std::string> labels;
        treat(policy, matrix, labels);
        EXPECT_THAT(values_of(matrix), ElementsAreArray(expected));
        EXPECT_EQ(treatment(policy, 4, matrix.report.rows), words);
        std::vector<bool> filled;
        if (policy != MissingPolicy::Drop) {
            filled = {false, true, false, false, true, false, false, false};
        }
        EXPECT_EQ(matrix.filled, filled);
        EXPECT_THAT(labels, IsEmpty());
    }
}

TEST(MissingValues, TakeNamesLinesAndLabelsWithThemWhenTheirRowsAreLeftOut) {
    InspectedMatrix matrix = matrix_of({1, kMissing, 3, 4, kMissing, 8, 6, 9});
    std::vector<std::string> labels{"a", "b", "c", "d"};
    treat(MissingPolicy::Drop, matrix, labels);
    EXPECT_THAT(matrix.row_names, ElementsAre("B", "D"));
    EXPECT_THAT(matrix.row_lines, ElementsAre(4U, 8U));
    EXPECT_THAT(labels, ElementsAre("b", "d"));
}

TEST(MissingValues, AreZeroInAColumnWithoutNumbers) {
    InspectedMatrix matrix = matrix_of({1, kMissing, 3, kMissing});
    std::vector<std::string> labels;
    treat(MissingPolicy::ColumnMean, matrix, labels);
    EXPECT_THAT(values_of(matrix), ElementsAre(1.0, 0.0, 3.0, 0.0));
}

TEST(MissingValues, LeaveNoMeanInARowWithoutNumbers) {
    InspectedMatrix matrix = matrix_of({1, 2, kMissing, kMissing});
    std::vector<std::string> labels;
    for (const char* const place : {"m:4: row \"B\" has no number", "m: row \"B\" has no number"}) {
        try {
            treat(MissingPolicy::RowMean, matrix, labels);
            ADD_FAILURE();
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(place));
        }
        matrix.row_lines.assign(2, 0);
    }
}

}  // namespace
}  // namespace ovik
