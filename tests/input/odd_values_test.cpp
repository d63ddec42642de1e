#include "input/odd_values.h"

#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Columns of values, each of them three times, with the names "a", "b" and so on, behind a field
/// of names.
InspectedMatrix matrix_of(const std::vector<std::vector<double>>& columns) {
    InspectedMatrix matrix;
    matrix.report.rows = 3 * columns[0].size();
    matrix.report.columns = columns.size();
    matrix.values = std::make_unique<double[]>(matrix.report.rows * matrix.report.columns);
    matrix.header.emplace_back("gene");
    for (std::size_t d = 0; d < columns.size(); ++d) {
        matrix.column_names.emplace_back(1, static_cast<char>('a' + d));
        matrix.header.push_back(matrix.column_names.back());
        matrix.column_fields.push_back(d + 2);
        for (std::size_t n = 0; n < matrix.report.rows; ++n) {
            matrix.values[n * columns.size() + d] = columns[d][n % columns[d].size()];
        }
    }
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        matrix.row_names.push_back("G" + std::to_string(n + 1));
        matrix.row_lines.push_back(n + 2);
    }
    return matrix;
}

std::string warning(const std::vector<std::vector<double>>& columns) {
    return odd_columns_warning("m.tsv", plainly_spelled, matrix_of(columns));
}

const std::vector<double> kRatios = {0.5, -1.25, 0.75, 2};
const std::vector<double> kCounts = {5, 120, 0, 37};

TEST(OddColumns, AreWholeNumbersAmongFractions) {
    EXPECT_EQ(warning({{850134, 855001, 851222, 853010}, kRatios, kRatios}),
              "m.tsv: column \"a\" (field 2) is unlike the other columns: whole numbers alone\n"
              "If it is no measurement, such as an identifier, a length or a cluster, leave it out "
              "with skip-columns a.");
    EXPECT_THAT(warning({kRatios, kRatios, {0, 1, 0, 2}}),
                StartsWith("m.tsv: column \"c\" (field 4) is unlike"));
    EXPECT_THAT(
        warning({{0, 1, 0, 2}, kRatios, kRatios, {1, 2, 3, 4, 5, std::nan("")}, kRatios, kRatios}),
        HasSubstr("column \"a\" (field 2), column \"d\" (field 5) are unlike"));
}

TEST(OddColumns, AreFarAboveAllOthers) {
    EXPECT_THAT(warning({kCounts, {850134, 855001, 851222, 853010}, kCounts}),
                HasSubstr("column \"b\" (field 3) is unlike the other columns: every value is far "
                          "above all of theirs"));
    EXPECT_EQ(warning({kCounts, {1190, 1300, 1210, 5000}, kCounts}), "");
    EXPECT_EQ(warning({kCounts, {850134, 855001, 851222, 853010}}), "");
}

TEST(OddColumns, CountTheRows) {
    std::vector<double> index(12);
    std::iota(index.begin(), index.end(), 7.0);
    InspectedMatrix matrix = matrix_of({kCounts, kCounts});
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        matrix.values[2 * n] = index[n];
    }
    EXPECT_EQ(odd_columns_warning("m.csv", plainly_spelled, matrix),
              "m.csv: column \"a\" (field 2) counts the rows\nIf it is no measurement, such as an "
              "identifier, a length or a cluster, leave it out with skip-columns a.");
    matrix.values[8] += 1.0;
    EXPECT_EQ(odd_columns_warning("m.csv", plainly_spelled, matrix), "");
}

TEST(OddColumns, AreNamedAsLengthsAndPlacesAre) {
    const std::vector<double> lengths = {300, 1200, 90, 4000};
    InspectedMatrix matrix = matrix_of({lengths, kCounts, kCounts});
    EXPECT_EQ(odd_columns_warning("m.tsv", plainly_spelled, matrix), "");
    matrix.column_names[0] = matrix.header[1] = "Length";
    EXPECT_THAT(
        odd_columns_warning("m.tsv", plainly_spelled, matrix),
        StartsWith("m.tsv: column \"Length\" (field 2) is named as lengths and places of genes"));
    matrix = matrix_of({{500, 9500, 18000, 2}, {2000, 9900, 20000, 3}, kCounts});
    matrix.column_names = {"start", "end", "s1"};
    matrix.header = {"gene", "start", "end", "s1"};
    EXPECT_THAT(odd_columns_warning("m.tsv", plainly_spelled, matrix),
                testing::EndsWith("leave them out with skip-columns start,end."));
    // Samples at the start and at the end of an experiment.
    matrix.values[0] = 2001;
    EXPECT_EQ(odd_columns_warning("m.tsv", plainly_spelled, matrix), "");
}

TEST(OddColumns, AreNoneOfUsualMatrices) {
    EXPECT_EQ(warning({kRatios, kRatios}), "");
    EXPECT_EQ(warning({kCounts, kCounts, kCounts}), "");
    EXPECT_EQ(warning({kRatios, kCounts}), "");
    // Nine whole numbers may be chance.
    const std::vector<double> three_ratios = {0.5, -1.25, 0.75};
    EXPECT_EQ(warning({{3, 1, 2}, three_ratios, three_ratios}), "");
    // The reference of ratios, and a sample without values.
    EXPECT_EQ(warning({{0, 0, 0, 0}, kRatios, kRatios}), "");
    const double missing = std::nan("");
    EXPECT_EQ(warning({{missing, missing, missing, missing}, kRatios, kRatios}), "");
    EXPECT_EQ(warning({{1000, 1000, 1000, 1000}, kRatios, kRatios}), "");
}

TEST(OddColumns, AreCalledByNumberWhereTheHeaderDoesNotTell) {
    InspectedMatrix matrix = matrix_of({kRatios, {3, 1, 2, 0}, kRatios});
    for (const char* const name : {"a", "x,y", "", "7"}) {
        matrix.column_names[1] = name;
        matrix.header[2] = name;
        EXPECT_THAT(odd_columns_warning("m.tsv", plainly_spelled, matrix),
                    HasSubstr("with skip-columns #3."))
            << name;
    }
}

TEST(OddColumns, OfArraysAreNamedByNumber) {
    InspectedMatrix matrix = matrix_of({kRatios, {3, 1, 2, 0}, kRatios});
    matrix.column_names.clear();
    matrix.header.clear();
    EXPECT_THAT(
        odd_columns_warning("m.tsv", plainly_spelled, matrix),
        testing::AllOf(HasSubstr("m.tsv: field 3 is unlike"), HasSubstr("with skip-columns #3.")));
    matrix.column_fields.clear();
    EXPECT_THAT(
        odd_columns_warning("m.npy", plainly_spelled, matrix),
        testing::AllOf(HasSubstr("m.npy: column 2 is unlike"), HasSubstr(", leave it out.")));
}

TEST(OddRows, AreNamedLikeASummaryOrAHeader) {
    InspectedMatrix matrix = matrix_of({kRatios});
    EXPECT_EQ(odd_rows_warning("m.tsv", matrix), "");
    matrix.row_names[0] = "time";
    matrix.row_names[1] = "SUM1";
    matrix.row_names[2] = "MEAN1";
    matrix.row_names[3] = "Total";
    EXPECT_EQ(odd_rows_warning("m.tsv", matrix),
              "m.tsv: rows \"time\" (line 2), \"Total\" (line 5) are named like a summary or a "
              "second header, and would be embedded as the others are\n"
              "Take what is no measurement of its own out of the file.");
    matrix = matrix_of({kRatios});
    matrix.row_names[0] = "dose";
    EXPECT_THAT(odd_rows_warning("m.tsv", matrix), StartsWith("m.tsv: row \"dose\" (line 2) is"));
    matrix = matrix_of({kRatios});
    matrix.row_names[11] = "Average";
    matrix.row_lines.assign(12, 0);
    EXPECT_THAT(odd_rows_warning("m.npy", matrix), StartsWith("m.npy: row \"Average\" is named"));
}

}  // namespace
}  // namespace ovik
