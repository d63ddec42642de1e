#include "input/matrix_check.h"

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "input/matrix_guess.h"
#include "util/input_error.h"
#include "util/matrix_reader.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNan;

std::vector<double> values_of(const InspectedMatrix& matrix) {
    const double* const values = matrix.values.get();
    return {values, values + matrix.report.rows * matrix.report.columns};
}

class MatrixCheck : public testing::Test {
  protected:
    InspectedMatrix inspect(const std::string& content, char delimiter = '\t') {
        MatrixSource source(directory_.write("m.txt", content));
        return inspect_matrix(source, delimiter);
    }

    std::optional<char> guess(const std::string& content) {
        return guess_delimiter(MatrixSource(directory_.write("m.txt", content)));
    }

    std::string refusal(const std::string& path) {
        try {
            MatrixSource source(path);
            inspect_matrix(source, '\t');
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryDirectory directory_;
};

class MatrixCheckProperty : public testing::Test {
  protected:
    test::TemporaryDirectory directory_;
};

TEST_F(MatrixCheck, CountsRowsColumnsAndNumbers) {
    const MatrixReport report = inspect("h\ta\tb\nG1\t1\t2\n# note\n\nG2\t3\t4\n").report;
    EXPECT_EQ(report.rows, 2U);
    EXPECT_EQ(report.columns, 2U);
    EXPECT_EQ(report.numbers, 4U);
    EXPECT_EQ(report.ragged_rows, 0U);
    EXPECT_FALSE(report.header_looks_like_data);
}

TEST_F(MatrixCheck, PlacesFieldsThatAreNoNumbers) {
    const MatrixReport report = inspect("h\nG1,1,2\nG2,,x1\nG3, ,y\n", ',').report;
    EXPECT_EQ(report.not_numbers.count, 2U);
    EXPECT_EQ(report.not_numbers.first.line, 3U);
    EXPECT_EQ(report.not_numbers.first.row, "G2");
    EXPECT_EQ(report.not_numbers.first.field, 3U);
    EXPECT_EQ(report.not_numbers.first.text, "x1");
    EXPECT_EQ(report.numbers, 2U);
}

TEST_F(MatrixCheck, ReadsMissingValuesAsNaNAndOtherTextAsZero) {
    const InspectedMatrix matrix = inspect("h\nG1,1,,x\n\n# note\nG2,NA,2.5y,-\n", ',');
    EXPECT_THAT(values_of(matrix), ElementsAre(1.0, IsNan(), 0.0, IsNan(), 2.5, IsNan()));
    EXPECT_THAT(matrix.row_names, ElementsAre("G1", "G2"));
    EXPECT_THAT(matrix.row_lines, ElementsAre(2U, 5U));
}

TEST_F(MatrixCheck, FillsUpRowsWhoseLastFieldsAreEmpty) {
    EXPECT_THAT(values_of(inspect("h\ta\tb\nG1\t1\t\nG2\t2\t3\nG3\t\t\r\nG4\t\t4\n")),
                ElementsAre(1.0, IsNan(), 2.0, 3.0, IsNan(), IsNan(), IsNan(), 4.0));
    EXPECT_THAT(values_of(inspect("h,a,b\nG1,1,2\nG2,3,\nG3,,\n", ',')),
                ElementsAre(1.0, 2.0, 3.0, IsNan(), IsNan(), IsNan()));
    // One delimiter too many at the end of every line.
    EXPECT_THAT(values_of(inspect("h,a,\nG1,1,\nG2,3,\n", ',')), ElementsAre(1.0, 3.0));
    // Too few delimiters are not filled up.
    EXPECT_EQ(inspect("h\nG1\t1\t2\t3\nG2\t1\t\n").report.ragged_rows, 1U);
}

TEST_F(MatrixCheck, NamesColumnsAsTheFirstLineDoes) {
    EXPECT_THAT(inspect("gene\ta\tb\nG1\t1\t2\n").column_names, ElementsAre("a", "b"));
    EXPECT_THAT(inspect("a\tb\nG1\t1\t2\n").column_names, ElementsAre("a", "b"));
    EXPECT_THAT(inspect("a\nG1\t1\t2\n").column_names, IsEmpty());
}

RC_GTEST_FIXTURE_PROP(MatrixCheckProperty, ReadsWhatTheReaderReads, ()) {
    const auto rows = *rc::gen::inRange(1, 40);
    const auto columns = *rc::gen::inRange(1, 6);
    std::string content = "header\n";
    for (int n = 0; n < rows; ++n) {
        content += "name" + std::to_string(n);
        for (int d = 0; d < columns; ++d) {
            content += "," + *rc::gen::element<std::string>(
                                 "1", "-2.5", "0.1", "1e-310", "x", "3x", " 4 ", "0x1F", "1,5");
        }
        content += *rc::gen::element<std::string>("\n", "\r\n", "\n\n# 1,2\n", " \n");
    }
    const std::string path = directory_.write("m.txt", content);
    std::vector<std::vector<double>> expected;
    std::vector<std::string> names;
    read_matrix_w_index<double>(expected, names, path, 1, ',');
    MatrixSource source(path);
    const InspectedMatrix matrix = inspect_matrix(source, ',');
    RC_ASSERT(matrix.row_names == names);
    if (matrix.values != nullptr) {
        std::vector<double> joined;
        for (const std::vector<double>& row : expected) {
            joined.insert(joined.end(), row.begin(), row.end());
        }
        RC_ASSERT(values_of(matrix) == joined);
    } else {
        RC_ASSERT(matrix.report.ragged_rows > 0U);
    }
}

TEST_F(MatrixCheck, CountsLinesAcrossBlocks) {
    std::string content = "h\n";
    // More than the blocks of several threads.
    for (int n = 0; n < 400000; ++n) {
        content += n % 100000 == 99999 ? "N\tx\n" : "G" + std::to_string(n) + "\t1\n";
    }
    const InspectedMatrix matrix = inspect(content);
    EXPECT_EQ(matrix.report.rows, 400000U);
    EXPECT_EQ(matrix.row_lines.back(), 400001U);
    EXPECT_EQ(matrix.row_names[123456], "G123456");
    EXPECT_EQ(matrix.report.not_numbers.count, 4U);
    EXPECT_EQ(matrix.report.not_numbers.first.line, 100001U);
    EXPECT_EQ(matrix.report.first_duplicate_names, (std::vector<std::string>{"N", "N", "N"}));
}

TEST_F(MatrixCheck, GuessesTheShape) {
    std::string content = "h\ta\tb\n";
    for (int n = 100; n < 1100; ++n) {
        content += "G100\t1.25\t" + std::to_string(n) + "\n";
    }
    const auto shape = guess_shape(MatrixSource(directory_.write("m.txt", content)), '\t');
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->columns, 2U);
    EXPECT_NEAR(static_cast<double>(shape->rows), 1000.0, 50.0);
    EXPECT_FALSE(guess_shape(MatrixSource(directory_.write("m.txt", "h\n")), '\t'));
}

TEST_F(MatrixCheck, PlacesTextBehindNumbers) {
    const MatrixReport report = inspect("h\nG1\t1.5abc\t2 \t3\n").report;
    EXPECT_EQ(report.with_text_behind.count, 1U);
    EXPECT_EQ(report.with_text_behind.first.text, "1.5abc");
}

TEST_F(MatrixCheck, PlacesValuesThatAreNotFinite) {
    const MatrixReport report = inspect("h\nG1\t1\nG2\t-nan\nG3\tinf\nG4\t1e999\n").report;
    EXPECT_EQ(report.not_finite.count, 3U);
    EXPECT_EQ(report.not_finite.first.line, 3U);
    EXPECT_EQ(report.not_finite.first.text, "-nan");
}

TEST_F(MatrixCheck, ListsRaggedRows) {
    const MatrixReport report = inspect("h\nG1\t1\t2\nG2\t1\nG3\t1\t2\nG4\t1\t2\t3\n").report;
    EXPECT_EQ(report.ragged_rows, 2U);
    ASSERT_EQ(report.first_ragged_rows.size(), 2U);
    EXPECT_EQ(report.first_ragged_rows[0].line, 3U);
    EXPECT_EQ(report.first_ragged_rows[0].name, "G2");
    EXPECT_EQ(report.first_ragged_rows[0].values, 1U);
    EXPECT_EQ(report.first_ragged_rows[1].values, 3U);
}

TEST_F(MatrixCheck, TellsOfNamesThatAreTrimmedAway) {
    const MatrixReport ragged = inspect("h\nG1\t1\t2\n\t3\t4\n").report;
    EXPECT_EQ(ragged.lost_names.count, 1U);
    EXPECT_EQ(ragged.lost_names.first.line, 3U);
    EXPECT_EQ(ragged.lost_names.first.row, "3");
    EXPECT_EQ(inspect("h\n\t1\t2\n\t3\t4\n").report.lost_names.count, 2U);
    // A line that is only indented has its name.
    EXPECT_EQ(inspect("h\n\tG1\t1\n\tG2\t3\n").report.lost_names.count, 0U);
    EXPECT_EQ(inspect("h\n,1,2\n", ',').report.lost_names.count, 0U);
}

TEST_F(MatrixCheck, CountsRowsWithoutName) {
    const MatrixReport report = inspect("h\nG1,1\n,2\n,3\n", ',').report;
    EXPECT_EQ(report.unnamed.count, 2U);
    EXPECT_EQ(report.unnamed.first.line, 3U);
    EXPECT_EQ(report.duplicate_names, 0U);
}

TEST_F(MatrixCheck, ListsDuplicateNames) {
    const MatrixReport report = inspect("h\nA\t1\nB\t2\nA\t3\nA\t4\n").report;
    EXPECT_EQ(report.duplicate_names, 2U);
    EXPECT_EQ(report.first_duplicate_names, (std::vector<std::string>{"A", "A"}));
}

TEST_F(MatrixCheck, SuspectsAHeaderOfMeasurements) {
    EXPECT_TRUE(inspect("G0\t0.5\t-1.25\nG1\t1\t2\n").report.header_looks_like_data);
    EXPECT_FALSE(inspect("gene\t0\t7\t3\nG1\t1\t2\t3\n").report.header_looks_like_data);
    EXPECT_FALSE(inspect("gene\t0.5\t1\t2\nG1\t1\t2\t3\n").report.header_looks_like_data);
    EXPECT_FALSE(inspect("gene\ta\t0.5\nG1\t1\t2\n").report.header_looks_like_data);
}

TEST_F(MatrixCheck, RefusesWhatIsNoReadableTextFile) {
    EXPECT_NE(refusal(directory_.file("none")).find("there is no such file"), std::string::npos);
    EXPECT_NE(refusal(directory_.prefix()).find("this is a directory"), std::string::npos);
    EXPECT_NE(refusal(directory_.write("a", "\x1f\x8b\x08")).find("gzip"), std::string::npos);
    EXPECT_NE(refusal(directory_.write("a", "BZh9")).find("bzip2 -d"), std::string::npos);
    EXPECT_NE(refusal(directory_.write("a", "PK\x03\x04")).find("zip archive"), std::string::npos);
    EXPECT_NE(refusal(directory_.write("a", "\xff\xfeh")).find("UTF-16"), std::string::npos);
    EXPECT_NE(refusal(directory_.write("a", "h\rG1\t1\rG2\t2\r")).find("old Macintoshes"),
              std::string::npos);
    EXPECT_EQ(refusal(directory_.write("a", "h\r")), "");
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
    EXPECT_EQ(guess("h\nG1|1|2\n"), std::nullopt);
    EXPECT_EQ(guess(""), std::nullopt);
}

}  // namespace
}  // namespace ovik
