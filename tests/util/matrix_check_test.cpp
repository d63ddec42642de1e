#include "util/matrix_check.h"

#include <string>

#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

class MatrixCheck : public testing::Test {
  protected:
    MatrixReport inspect(const std::string& content, char delimiter = '\t') {
        return inspect_matrix(directory_.write("m.txt", content), delimiter);
    }

    char guess(const std::string& content) {
        return guess_delimiter(directory_.write("m.txt", content));
    }

    std::string refusal(const std::string& path) {
        try {
            inspect_matrix(path, '\t');
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryDirectory directory_;
};

TEST_F(MatrixCheck, CountsRowsColumnsAndNumbers) {
    const MatrixReport report = inspect("h\ta\tb\nG1\t1\t2\n# note\n\nG2\t3\t4\n");
    EXPECT_EQ(report.rows, 2U);
    EXPECT_EQ(report.columns, 2U);
    EXPECT_EQ(report.numbers, 4U);
    EXPECT_EQ(report.ragged_rows, 0U);
    EXPECT_FALSE(report.rows_all_equal);
    EXPECT_FALSE(report.header_looks_like_data);
}

TEST_F(MatrixCheck, PlacesFieldsThatReadAsZero) {
    const MatrixReport report = inspect("h\nG1,1,2\nG2,,x1\nG3, ,NA\n", ',');
    EXPECT_EQ(report.empty.count, 2U);
    EXPECT_EQ(report.empty.first.line, 3U);
    EXPECT_EQ(report.empty.first.row, "G2");
    EXPECT_EQ(report.empty.first.field, 2U);
    EXPECT_EQ(report.not_numbers.count, 2U);
    EXPECT_EQ(report.not_numbers.first.field, 3U);
    EXPECT_EQ(report.not_numbers.first.text, "x1");
    EXPECT_EQ(report.numbers, 2U);
}

TEST_F(MatrixCheck, PlacesTextBehindNumbers) {
    const MatrixReport report = inspect("h\nG1\t1.5abc\t2 \t3\n");
    EXPECT_EQ(report.with_text_behind.count, 1U);
    EXPECT_EQ(report.with_text_behind.first.text, "1.5abc");
}

TEST_F(MatrixCheck, PlacesValuesThatAreNotFinite) {
    const MatrixReport report = inspect("h\nG1\t1\nG2\tnan\nG3\tinf\nG4\t1e999\n");
    EXPECT_EQ(report.not_finite.count, 3U);
    EXPECT_EQ(report.not_finite.first.line, 3U);
    EXPECT_EQ(report.not_finite.first.text, "nan");
}

TEST_F(MatrixCheck, ListsRaggedRows) {
    const MatrixReport report = inspect("h\nG1\t1\t2\nG2\t1\nG3\t1\t2\nG4\t1\t2\t3\n");
    EXPECT_EQ(report.ragged_rows, 2U);
    ASSERT_EQ(report.first_ragged_rows.size(), 2U);
    EXPECT_EQ(report.first_ragged_rows[0].line, 3U);
    EXPECT_EQ(report.first_ragged_rows[0].name, "G2");
    EXPECT_EQ(report.first_ragged_rows[0].values, 1U);
    EXPECT_EQ(report.first_ragged_rows[1].values, 3U);
}

TEST_F(MatrixCheck, TellsOfNamesThatAreTrimmedAway) {
    const MatrixReport ragged = inspect("h\nG1\t1\t2\n\t3\t4\n");
    EXPECT_EQ(ragged.lost_names.count, 1U);
    EXPECT_EQ(ragged.lost_names.first.line, 3U);
    EXPECT_EQ(ragged.lost_names.first.row, "3");
    EXPECT_EQ(inspect("h\n\t1\t2\n\t3\t4\n").lost_names.count, 2U);
    // A line that is only indented has its name.
    EXPECT_EQ(inspect("h\n\tG1\t1\n\tG2\t3\n").lost_names.count, 0U);
    EXPECT_EQ(inspect("h\n,1,2\n", ',').lost_names.count, 0U);
}

TEST_F(MatrixCheck, MeasuresTheScale) {
    const MatrixReport report = inspect("h\nG1\t1\t-20\nG2\t4\t-19\n");
    EXPECT_EQ(report.largest_magnitude, 20.0);
    EXPECT_EQ(report.widest_range, 3.0);
}

TEST_F(MatrixCheck, CountsRowsWithoutName) {
    const MatrixReport report = inspect("h\nG1,1\n,2\n,3\n", ',');
    EXPECT_EQ(report.unnamed.count, 2U);
    EXPECT_EQ(report.unnamed.first.line, 3U);
    EXPECT_EQ(report.duplicate_names, 0U);
}

TEST_F(MatrixCheck, ListsDuplicateNames) {
    const MatrixReport report = inspect("h\nA\t1\nB\t2\nA\t3\nA\t4\n");
    EXPECT_EQ(report.duplicate_names, 2U);
    EXPECT_EQ(report.first_duplicate_names, (std::vector<std::string>{"A", "A"}));
}

TEST_F(MatrixCheck, SeesRowsThatAreAllEqual) {
    EXPECT_TRUE(inspect("h\nA\t1\t2\nB\t1\t2\n").rows_all_equal);
    EXPECT_FALSE(inspect("h\nA\t1\t2\nB\t1\t2.5\n").rows_all_equal);
}

TEST_F(MatrixCheck, SuspectsAHeaderOfMeasurements) {
    EXPECT_TRUE(inspect("G0\t0.5\t-1.25\nG1\t1\t2\n").header_looks_like_data);
    EXPECT_FALSE(inspect("gene\t0\t7\t3\nG1\t1\t2\t3\n").header_looks_like_data);
    EXPECT_FALSE(inspect("gene\t0.5\t1\t2\nG1\t1\t2\t3\n").header_looks_like_data);
    EXPECT_FALSE(inspect("gene\ta\t0.5\nG1\t1\t2\n").header_looks_like_data);
}

TEST_F(MatrixCheck, RefusesWhatIsNoReadableTextFile) {
    EXPECT_NE(refusal(directory_.file("none")).find("there is no such file"), std::string::npos);
    EXPECT_NE(refusal(directory_.prefix()).find("this is a directory"), std::string::npos);
    EXPECT_NE(refusal("/dev/null").find("no regular file"), std::string::npos);
    EXPECT_NE(refusal(directory_.write("a", "\x1f\x8b\x08")).find("gzip"), std::string::npos);
    EXPECT_NE(refusal(directory_.write("a", "PK\x03\x04")).find("zip archive"), std::string::npos);
    EXPECT_NE(refusal(directory_.write("a", "\xff\xfeh")).find("UTF-16"), std::string::npos);
}

TEST_F(MatrixCheck, RefusesNulBytesWithTheirLine) {
    const std::string path = directory_.write("a", std::string("h\nG1\t1\nG\0\t2\n", 12));
    EXPECT_EQ(refusal(path), path + ":3: the line holds a NUL byte, so this is no text file");
}

TEST_F(MatrixCheck, GuessesTheDelimiter) {
    EXPECT_EQ(guess("h\nG1\t1\t2\n"), '\t');
    EXPECT_EQ(guess("h\nG1,1,2\n"), ',');
    EXPECT_EQ(guess("h\nG1;1;2\n"), ';');
    EXPECT_EQ(guess("h\nG1 1 2\n"), ' ');
    EXPECT_EQ(guess("h\nADE5,7\t1\t2\n"), '\t');
    EXPECT_EQ(guess("h\nG1\t0,17\t0,33\n"), '\t');
    EXPECT_EQ(guess("h\nG1;0,17;0,33\n"), ';');
    EXPECT_EQ(guess("h h\n# 1,2,3\nG1;1.5;2\n"), ';');
}

TEST_F(MatrixCheck, SaysWhenNoDelimiterFits) {
    EXPECT_THROW(guess("h\nG1|1|2\n"), InputError);
    EXPECT_THROW(guess(""), InputError);
}

}  // namespace
}  // namespace ovik
