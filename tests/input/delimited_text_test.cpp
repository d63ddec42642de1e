#include "input/delimited_text.h"

#include <locale.h>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "util/matrix_reader.h"

#include "tests/support/locales.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNan;

std::vector<double> values_of(const InspectedMatrix& matrix) {
    const double* const values = matrix.values.get();
    return {values, values + matrix.report.rows * matrix.report.columns};
}

class DelimitedText : public testing::Test {
  protected:
    InspectedMatrix inspect(const std::string& content, char delimiter = '\t') {
        MatrixSource source(directory_.write("m.txt", content));
        InspectedMatrix matrix = inspect_matrix(source, delimiter);
        note_duplicate_names(matrix);
        return matrix;
    }

    /// Why text is refused that is read with these options; empty if it is not.
    std::string refusal(const std::string& content, const LoadOptions& options = {}) {
        MatrixSource source(directory_.write("m.txt", content));
        return test::refusal_of([&] { read_delimited_text(source, options); });
    }

    test::TemporaryDirectory directory_;
};

class DelimitedTextProperty : public testing::Test {
  protected:
    test::TemporaryDirectory directory_;
};

TEST_F(DelimitedText, CountsRowsColumnsAndNumbers) {
    const MatrixReport report = inspect("h\ta\tb\nG1\t1\t2\n# note\n\nG2\t3\t4\n").report;
    EXPECT_EQ(report.rows, 2U);
    EXPECT_EQ(report.columns, 2U);
    EXPECT_EQ(report.numbers, 4U);
    EXPECT_EQ(report.ragged_rows, 0U);
    EXPECT_FALSE(report.header_looks_like_data);
}

TEST_F(DelimitedText, PlacesFieldsThatAreNoNumbers) {
    const MatrixReport report = inspect("h\nG1,1,2\nG2,,x1\nG3, ,y\n", ',').report;
    EXPECT_EQ(report.not_numbers.count, 2U);
    EXPECT_EQ(report.not_numbers.first.line, 3U);
    EXPECT_EQ(report.not_numbers.first.row, "G2");
    EXPECT_EQ(report.not_numbers.first.field, 3U);
    EXPECT_EQ(report.not_numbers.first.text, "x1");
    EXPECT_EQ(report.numbers, 2U);
}

TEST_F(DelimitedText, ReadsMissingValuesAsNaNAndOtherTextAsZero) {
    const InspectedMatrix matrix = inspect("h\nG1,1,,x\n\n# note\nG2,NA,2.5y,-\n", ',');
    EXPECT_THAT(values_of(matrix), ElementsAre(1.0, IsNan(), 0.0, IsNan(), 2.5, IsNan()));
    EXPECT_THAT(matrix.row_names, ElementsAre("G1", "G2"));
    EXPECT_THAT(matrix.row_lines, ElementsAre(2U, 5U));
}

TEST_F(DelimitedText, FillsUpRowsWhoseLastFieldsAreEmpty) {
    EXPECT_THAT(values_of(inspect("h\ta\tb\nG1\t1\t\nG2\t2\t3\nG3\t\t\r\nG4\t\t4\n")),
                ElementsAre(1.0, IsNan(), 2.0, 3.0, IsNan(), IsNan(), IsNan(), 4.0));
    EXPECT_THAT(values_of(inspect("h,a,b\nG1,1,2\nG2,3,\nG3,,\n", ',')),
                ElementsAre(1.0, 2.0, 3.0, IsNan(), IsNan(), IsNan()));
    // One delimiter too many at the end of every line.
    EXPECT_THAT(values_of(inspect("h,a,\nG1,1,\nG2,3,\n", ',')), ElementsAre(1.0, 3.0));
    // Too few delimiters are not filled up.
    EXPECT_EQ(inspect("h\nG1\t1\t2\t3\nG2\t1\t\n").report.ragged_rows, 1U);
}

TEST_F(DelimitedText, NamesColumnsAsTheFirstLineDoes) {
    EXPECT_THAT(inspect("gene\ta\tb\nG1\t1\t2\n").column_names, ElementsAre("a", "b"));
    EXPECT_THAT(inspect("a\tb\nG1\t1\t2\n").column_names, ElementsAre("a", "b"));
    EXPECT_THAT(inspect("a\nG1\t1\t2\n").column_names, IsEmpty());
}

RC_GTEST_FIXTURE_PROP(DelimitedTextProperty, ReadsWhatTheReaderReads, ()) {
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

TEST_F(DelimitedText, CountsLinesAcrossBlocks) {
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
    EXPECT_EQ(matrix.row_names[399999], "N");
    EXPECT_EQ(matrix.report.first_duplicate_names, (std::vector<std::string>{"N", "N", "N"}));
}

TEST_F(DelimitedText, PlacesTextBehindNumbers) {
    const MatrixReport report = inspect("h\nG1\t1.5abc\t2 \t3\n").report;
    EXPECT_EQ(report.with_text_behind.count, 1U);
    EXPECT_EQ(report.with_text_behind.first.text, "1.5abc");
}

TEST_F(DelimitedText, PlacesValuesThatAreNotFinite) {
    const MatrixReport report = inspect("h\nG1\t1\nG2\t-nan\nG3\tinf\nG4\t1e999\n").report;
    EXPECT_EQ(report.not_finite.count, 3U);
    EXPECT_EQ(report.not_finite.first.line, 3U);
    EXPECT_EQ(report.not_finite.first.text, "-nan");
}

TEST_F(DelimitedText, ListsRaggedRows) {
    const MatrixReport report = inspect("h\nG1\t1\t2\nG2\t1\nG3\t1\t2\nG4\t1\t2\t3\n").report;
    EXPECT_EQ(report.ragged_rows, 2U);
    ASSERT_EQ(report.first_ragged_rows.size(), 2U);
    EXPECT_EQ(report.first_ragged_rows[0].line, 3U);
    EXPECT_EQ(report.first_ragged_rows[0].name, "G2");
    EXPECT_EQ(report.first_ragged_rows[0].values, 1U);
    EXPECT_EQ(report.first_ragged_rows[1].values, 3U);
}

TEST_F(DelimitedText, TellsOfNamesThatAreTrimmedAway) {
    const MatrixReport ragged = inspect("h\nG1\t1\t2\n\t3\t4\n").report;
    EXPECT_EQ(ragged.lost_names.count, 1U);
    EXPECT_EQ(ragged.lost_names.first.line, 3U);
    EXPECT_EQ(ragged.lost_names.first.row, "3");
    EXPECT_EQ(inspect("h\n\t1\t2\n\t3\t4\n").report.lost_names.count, 2U);
    // A line that is only indented has its name.
    EXPECT_EQ(inspect("h\n\tG1\t1\n\tG2\t3\n").report.lost_names.count, 0U);
    EXPECT_EQ(inspect("h\n,1,2\n", ',').report.lost_names.count, 0U);
}

TEST_F(DelimitedText, CountsRowsWithoutName) {
    const MatrixReport report = inspect("h\nG1,1\n,2\n,3\n", ',').report;
    EXPECT_EQ(report.unnamed.count, 2U);
    EXPECT_EQ(report.unnamed.first.line, 3U);
    EXPECT_EQ(report.duplicate_names, 0U);
}

TEST_F(DelimitedText, ListsDuplicateNames) {
    const MatrixReport report = inspect("h\nA\t1\nB\t2\nA\t3\nA\t4\n").report;
    EXPECT_EQ(report.duplicate_names, 2U);
    EXPECT_EQ(report.first_duplicate_names, (std::vector<std::string>{"A", "A"}));
}

TEST_F(DelimitedText, SuspectsAHeaderOfMeasurements) {
    EXPECT_TRUE(inspect("G0\t0.5\t-1.25\nG1\t1\t2\n").report.header_looks_like_data);
    EXPECT_FALSE(inspect("gene\t0\t7\t3\nG1\t1\t2\t3\n").report.header_looks_like_data);
    EXPECT_FALSE(inspect("gene\t0.5\t1\t2\nG1\t1\t2\t3\n").report.header_looks_like_data);
    EXPECT_FALSE(inspect("gene\ta\t0.5\nG1\t1\t2\n").report.header_looks_like_data);
}

TEST_F(DelimitedText, RefusesNulBytesWithTheirLine) {
    EXPECT_EQ(refusal(std::string("h\nG1\t1\nG\0\t2\n", 12)),
              directory_.file("m.txt") + ":3: the line holds a NUL byte, so this is no text file");
}

TEST_F(DelimitedText, IsReadWithTheDelimiterThatIsGivenOrGuessed) {
    MatrixSource semicolons(directory_.write("m.txt", "h\nG1;1,5;2\nG2;3;4\n"));
    EXPECT_THAT(values_of(read_delimited_text(semicolons, {})), ElementsAre(1.0, 2.0, 3.0, 4.0));
    MatrixSource commas(directory_.file("m.txt"));
    LoadOptions options;
    options.delimiter = ',';
    EXPECT_THAT(read_delimited_text(commas, options).row_names, ElementsAre("G1;1", "G2;3;4"));
}

TEST_F(DelimitedText, IsRefusedWithoutNamesOrNumbers) {
    EXPECT_THAT(refusal("h\n\t1\t2\n\t3\t4\n"), testing::HasSubstr(":2: the row has no name"));
    LoadOptions options;
    options.delimiter = ',';
    EXPECT_THAT(refusal("h\nG1\t1\n", options),
                testing::HasSubstr("holds no numbers with , between the fields"));
}

TEST_F(DelimitedText, TellsBeforeMoreThanTheHeadIsRead) {
    struct TooLarge {};

    LoadOptions options;
    options.before_reading = [](const MatrixSource& source, char delimiter) {
        EXPECT_EQ(delimiter, ',');
        EXPECT_EQ(source.head(), "h\nG1,1\nG\0");
        throw TooLarge();
    };
    EXPECT_THROW(refusal("h\nG1,1\nG\0", options), TooLarge);
}

/// A locale with a decimal comma that only this thread has is followed in all rows, and forgotten.
TEST_F(DelimitedText, FollowsTheLocaleOfTheCaller) {
    const test::MadeLocales made({"de_DE.UTF-8"});
    if (!made.failure().empty()) {
        GTEST_SKIP() << made.failure();
    }
    std::string content = "h\n";
    for (int n = 0; n < 200000; ++n) {
        content += "GENE\t0,5\t0.5\t3.25\n";
    }
    const locale_t german = newlocale(LC_ALL_MASK, "de_DE.UTF-8", nullptr);
    ASSERT_NE(german, nullptr);
    for (const int threads : test::kThreadCounts) {
        SCOPED_TRACE(threads);
        const test::ThreadCount scope(threads);
        const locale_t before = uselocale(german);
        const InspectedMatrix with_commas = inspect(content);
        uselocale(before);
        EXPECT_EQ(with_commas.report.numbers, 600000U);
        EXPECT_EQ(with_commas.report.with_text_behind.count, 400000U);
        EXPECT_EQ(with_commas.values[599997], 0.5);
        const InspectedMatrix with_points = inspect(content);
        EXPECT_EQ(with_points.report.with_text_behind.count, 200000U);
        EXPECT_EQ(with_points.values[599997], 0.0);
    }
    freelocale(german);
}

}  // namespace
}  // namespace ovik
