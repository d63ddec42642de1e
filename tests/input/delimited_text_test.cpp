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
        TableLayout layout;
        layout.delimiter = delimiter;
        return inspect(content, layout);
    }

    InspectedMatrix inspect(const std::string& content, const TableLayout& layout) {
        MatrixSource source(directory_.write("m.txt", content));
        InspectedMatrix matrix = inspect_matrix(source, layout);
        note_duplicate_names(matrix);
        return matrix;
    }

    InspectedMatrix read(const std::string& content, const LoadOptions& options = {}) {
        MatrixSource source(directory_.write("m.txt", content));
        return read_delimited_text(source, options);
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
}

TEST_F(DelimitedText, PlacesFieldsThatAreNoNumbers) {
    const MatrixReport report = inspect("h\nG1,1,2\nG2,,x1\nG3, ,y\n", ',').report;
    EXPECT_EQ(report.not_numbers.count, 2U);
    EXPECT_EQ(report.not_numbers.places.at(0).line, 3U);
    EXPECT_EQ(report.not_numbers.places.at(0).row, "G2");
    EXPECT_EQ(report.not_numbers.places.at(0).field, 3U);
    EXPECT_EQ(report.not_numbers.places.at(0).text, "x1");
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

TEST_F(DelimitedText, NamesColumnsAsTheHeaderDoes) {
    TableLayout layout;
    layout.header = {"gene", "a", "b"};
    const InspectedMatrix named = inspect("gene\ta\tb\nG1\t1\t2\n", layout);
    EXPECT_THAT(named.column_names, ElementsAre("a", "b"));
    EXPECT_THAT(named.column_fields, ElementsAre(2U, 3U));
    EXPECT_THAT(inspect("gene\ta\tb\nG1\t1\t2\t3\n", layout).column_names, IsEmpty());
}

TEST_F(DelimitedText, TakesNamesAndValuesFromTheFieldsThatTheLayoutSays) {
    TableLayout layout;
    layout.names_field = 2;
    layout.leaveOut(0);
    layout.header = {"id", "a", "gene", "b"};
    // Empty fields in front stay; the note of a field has the name that comes behind it.
    const InspectedMatrix matrix =
        inspect("id\ta\tgene\tb\n7\t1\tG1\t2\n\t3\tG2\t\n9\tx\tG3\t4\n", layout);
    EXPECT_THAT(matrix.row_names, ElementsAre("G1", "G2", "G3"));
    EXPECT_THAT(values_of(matrix), ElementsAre(1.0, 2.0, 3.0, IsNan(), 0.0, 4.0));
    EXPECT_THAT(matrix.column_names, ElementsAre("a", "b"));
    EXPECT_THAT(matrix.column_fields, ElementsAre(2U, 4U));
    EXPECT_EQ(matrix.report.not_numbers.places.at(0).row, "G3");
    EXPECT_EQ(matrix.report.not_numbers.places.at(0).field, 2U);
    layout = {};
    layout.names_field.reset();
    const InspectedMatrix unnamed = inspect("a\tb\n1\t2\n3\t4\n", layout);
    EXPECT_FALSE(unnamed.has_names);
    EXPECT_THAT(values_of(unnamed), ElementsAre(1.0, 2.0, 3.0, 4.0));
    EXPECT_EQ(unnamed.report.unnamed.count, 0U);
}

TEST_F(DelimitedText, LeavesOutLinesThatAreNoRows) {
    TableLayout layout;
    layout.no_rows = {"EWEIGHT"};
    layout.end_mark = "!end";
    const InspectedMatrix matrix =
        inspect("h\ta\nEWEIGHT\tx\n\"EWEIGHT\"\tx\nEWEIGHTS\t1\nG1\t2\n!end\nG2\t\"x\n", layout);
    EXPECT_THAT(matrix.row_names, ElementsAre("EWEIGHTS", "G1"));
    EXPECT_THAT(matrix.row_lines, ElementsAre(4U, 5U));
    EXPECT_THAT(matrix.report.no_rows, ElementsAre("EWEIGHT", "EWEIGHT"));
    EXPECT_TRUE(matrix.report.has_end_mark);
    EXPECT_EQ(matrix.report.not_numbers.count, 0U);
}

TEST_F(DelimitedText, SkipsTheEmptyRowsOfSpreadsheets) {
    const InspectedMatrix matrix = inspect("h,a,b\n,,\nG1,1,2\n,,\r\n,,3\n,\n", ',');
    EXPECT_THAT(matrix.row_names, ElementsAre("G1", ""));
    EXPECT_THAT(values_of(matrix), ElementsAre(1.0, 2.0, IsNan(), 3.0));
}

TEST_F(DelimitedText, LeavesOutAllBlocksBehindTheEndOfTheTable) {
    std::string content = "h\nG1\t1\nG2\t2\n!end\n";
    for (int n = 0; n < 400000; ++n) {
        content += "N\tx\ty\n";
    }
    TableLayout layout;
    layout.end_mark = "!end";
    const InspectedMatrix matrix = inspect(content, layout);
    EXPECT_THAT(values_of(matrix), ElementsAre(1.0, 2.0));
}

TEST_F(DelimitedText, TakesFieldsOutOfTheirQuotes) {
    const InspectedMatrix matrix = inspect(
        "h,a,b\n\"ARG5,6\",1,\"2\"\n\"a \"\"b\"\"\",\"NA\",\"-3\"\n"
        "\"two\r\nlines\",\"\", \"4\"\n5\" of it,\"6\" ,7\n\"x\" y,8,\"z\"\n",
        ',');
    EXPECT_THAT(matrix.row_names,
                ElementsAre("ARG5,6", "a \"b\"", "two lines", "5\" of it", "\"x\" y"));
    EXPECT_THAT(values_of(matrix),
                ElementsAre(1.0, 2.0, IsNan(), -3.0, IsNan(), 0.0, 6.0, 7.0, 8.0, 0.0));
    EXPECT_THAT(matrix.row_lines, ElementsAre(2U, 3U, 4U, 6U, 7U));
    EXPECT_EQ(matrix.report.not_numbers.count, 2U);
    EXPECT_EQ(matrix.report.not_numbers.places.at(0).text, " \"4\"");
}

TEST_F(DelimitedText, RefusesAQuoteThatNothingClosesWithItsLine) {
    for (const char* const content :
         {"h\nG1\t1\n\"G2\t2\nG3\t3\n", "h\nG1\t1\n\"G2\t2\nG3\"x\t3\n", "h\nG1\t1\nG2\t\"2\n"}) {
        EXPECT_THAT(refusal(content), testing::HasSubstr("m.txt:3: a quote opens a field"));
    }
}

/// Text of which every field may stand in quotes, and the same in quotes alone where it has to be.
RC_GTEST_FIXTURE_PROP(DelimitedTextProperty, ReadsQuotedFieldsAsOthers, ()) {
    const auto rows = *rc::gen::inRange(1, 30);
    std::string plain = "h\ta\tb\n";
    std::string quoted = plain;
    for (int n = 0; n < rows; ++n) {
        for (int field = 0; field < 3; ++field) {
            const std::string text = field == 0
                                         ? *rc::gen::element<std::string>("G", "5\"", "a b", "'x")
                                         : *rc::gen::element<std::string>("1", "-2.5", "NA", "x");
            std::string in_quotes = "\"";
            for (const char c : text) {
                in_quotes += c == '"' ? "\"\"" : std::string(1, c);
            }
            plain += text;
            quoted += *rc::gen::arbitrary<bool>() ? in_quotes + "\"" : text;
            (plain += field < 2 ? "\t" : "\n");
            (quoted += field < 2 ? "\t" : "\n");
        }
    }
    const auto inspected = [&](const std::string& content) {
        MatrixSource source(directory_.write("m.txt", content));
        return inspect_matrix(source, TableLayout());
    };
    const InspectedMatrix expected = inspected(plain);
    const InspectedMatrix matrix = inspected(quoted);
    RC_ASSERT(matrix.row_names == expected.row_names);
    RC_ASSERT(matrix.row_lines == expected.row_lines);
    RC_ASSERT(matrix.report.not_numbers.count == expected.report.not_numbers.count);
    const std::vector<double> values = values_of(matrix);
    const std::vector<double> expected_values = values_of(expected);
    RC_ASSERT(std::equal(values.begin(),
                         values.end(),
                         expected_values.begin(),
                         expected_values.end(),
                         [](double a, double b) { return a == b || (a != a && b != b); }));
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
    TableLayout layout;
    layout.delimiter = ',';
    const InspectedMatrix matrix = inspect_matrix(source, layout);
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
    EXPECT_EQ(matrix.report.not_numbers.places.at(0).line, 100001U);
    EXPECT_EQ(matrix.row_names[399999], "N");
    EXPECT_EQ(matrix.report.first_duplicate_names, (std::vector<std::string>{"N", "N", "N"}));
}

/// Names of several lines, so that the records of one block end in the next one.
TEST_F(DelimitedText, ReadsQuotedRecordsAcrossBlocksWithAnyNumberOfThreads) {
    std::string content = "h\ta\n";
    constexpr std::size_t kRows = 60000;
    for (std::size_t n = 0; n < kRows; ++n) {
        content += "\"G" + std::to_string(n) + "\n" + std::string(n % 97, 'x') + "\t\"\t" +
                   std::to_string(n) + "\n";
    }
    for (const int threads : test::kThreadCounts) {
        SCOPED_TRACE(threads);
        const test::ThreadCount scope(threads);
        const InspectedMatrix matrix = inspect(content);
        ASSERT_EQ(matrix.report.rows, kRows);
        for (std::size_t n = 0; n < kRows; ++n) {
            ASSERT_EQ(matrix.values[n], static_cast<double>(n));
            ASSERT_EQ(matrix.row_lines[n], 2 * n + 2);
        }
        EXPECT_EQ(matrix.row_names[3], "G3 xxx\t");
    }
}

TEST_F(DelimitedText, PlacesTextBehindNumbers) {
    const MatrixReport report = inspect("h\nG1\t1.5abc\t2 \t3\n").report;
    EXPECT_EQ(report.with_text_behind.count, 1U);
    EXPECT_EQ(report.with_text_behind.places.at(0).text, "1.5abc");
}

TEST_F(DelimitedText, PlacesValuesThatAreNotFinite) {
    const MatrixReport report = inspect("h\nG1\t1\nG2\t-nan\nG3\tinf\nG4\t1e999\n").report;
    EXPECT_EQ(report.not_finite.count, 3U);
    EXPECT_EQ(report.not_finite.places.at(0).line, 3U);
    EXPECT_EQ(report.not_finite.places.at(0).text, "-nan");
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
    EXPECT_EQ(ragged.lost_names.places.at(0).line, 3U);
    EXPECT_EQ(ragged.lost_names.places.at(0).row, "3");
    EXPECT_EQ(inspect("h\n\t1\t2\n\t3\t4\n").report.lost_names.count, 2U);
    // A line that is only indented has its name.
    EXPECT_EQ(inspect("h\n\tG1\t1\n\tG2\t3\n").report.lost_names.count, 0U);
    EXPECT_EQ(inspect("h\n,1,2\n", ',').report.lost_names.count, 0U);
}

TEST_F(DelimitedText, CountsRowsWithoutName) {
    const MatrixReport report = inspect("h\nG1,1\n,2\n,3\n", ',').report;
    EXPECT_EQ(report.unnamed.count, 2U);
    EXPECT_EQ(report.unnamed.places.at(0).line, 3U);
    EXPECT_EQ(report.duplicate_names, 0U);
}

TEST_F(DelimitedText, ListsDuplicateNames) {
    const MatrixReport report = inspect("h\nA\t1\nB\t2\nA\t3\nA\t4\n").report;
    EXPECT_EQ(report.duplicate_names, 2U);
    EXPECT_EQ(report.first_duplicate_names, (std::vector<std::string>{"A", "A"}));
}

TEST_F(DelimitedText, RefusesNulBytesWithTheirLine) {
    EXPECT_EQ(refusal(std::string("h\nG1\t1\nG\0\t2\n", 12)),
              directory_.file("m.txt") + ":3: the line holds a NUL byte, so this is no text file");
}

TEST_F(DelimitedText, IsReadWithTheDelimiterThatIsGivenOrGuessed) {
    EXPECT_THAT(values_of(read("h\nG1;1.5;2\nG2;3;4\n")), ElementsAre(1.5, 2.0, 3.0, 4.0));
    LoadOptions options;
    options.delimiter = ',';
    EXPECT_THAT(read("h\nG1;1,5\nG2;3;4,1\n", options).row_names, ElementsAre("G1;1", "G2;3;4"));
}

TEST_F(DelimitedText, IsReadAsTheOptionsSay) {
    LoadOptions options;
    options.decimal = ',';
    options.missing_signs = {"ND"};
    options.skip_columns = {"note"};
    options.names_column = "gene";
    const InspectedMatrix matrix =
        read("id;gene;a;note;b\n1;G1;0,5;x;ND\n2;G2;-1,25e1;y;3\n3;G3;0;;4\n", options);
    EXPECT_THAT(matrix.row_names, ElementsAre("G1", "G2", "G3"));
    EXPECT_THAT(values_of(matrix), ElementsAre(0.5, IsNan(), -12.5, 3.0, 0.0, 4.0));
    EXPECT_THAT(matrix.column_names, ElementsAre("a", "b"));
    EXPECT_THAT(matrix.report.notes,
                ElementsAre("in front of the names, and so no values: column \"id\" (field 1)"));
    options = {};
    options.has_header = false;
    options.has_names = false;
    EXPECT_THAT(values_of(read("\xEF\xBB\xBF"
                               "1,2\n3,4\n5,6\n",
                               options)),
                ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
}

TEST_F(DelimitedText, TellsWhichLinesWereNoRows) {
    const InspectedMatrix matrix = read(
        "YORF\tNAME\tGWEIGHT\ta\nEWEIGHT\t\t\t1\nYAL001C\tTFC3\t1\t0.5\nYAL002W\tVPS8\t1\t2\n");
    EXPECT_THAT(matrix.row_names, ElementsAre("YAL001C", "YAL002W"));
    EXPECT_THAT(matrix.report.notes,
                ElementsAre("gene expression table (.pcl): names from YORF; no values: NAME and "
                            "GWEIGHT",
                            "no rows: EWEIGHT"));
}

TEST_F(DelimitedText, IsRefusedWithoutNamesOrNumbers) {
    EXPECT_THAT(refusal("h\n\t1\t2\n\t3\t4\n"), testing::HasSubstr(":2: the row has no name"));
    LoadOptions options;
    options.delimiter = ',';
    EXPECT_THAT(refusal("h\nG1\t1\n", options),
                testing::HasSubstr("holds no numbers with , between the fields\nThere are with "
                                   "delimiter tab"));
}

TEST_F(DelimitedText, TellsBeforeMoreThanTheHeadIsRead) {
    struct TooLarge {};

    LoadOptions options;
    options.before_reading = [](const MatrixSource& source, const TableLayout& layout) {
        EXPECT_EQ(layout.delimiter, ',');
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

TEST_F(DelimitedText, TellsOfCommentsThatHaveTheFieldsOfARow) {
    const InspectedMatrix matrix = inspect(
        "h\ta\tb\nG1\t1\t2\n#N/A\t3\t4\n# 2\t5\n#\tof\tall\n#G4\t5\t6\n#2\t7\n#3\t7\t\nG5\t8\t9\n");
    EXPECT_THAT(matrix.row_names, ElementsAre("G1", "G5"));
    EXPECT_EQ(matrix.report.skipped_rows.count, 1U);
    EXPECT_EQ(matrix.report.skipped_rows.places.at(0).line, 6U);
    EXPECT_EQ(matrix.report.skipped_names.count, 2U);
    EXPECT_EQ(matrix.report.skipped_names.places.at(0).text, "#N/A");
    EXPECT_EQ(matrix.report.skipped_names.places.at(1).line, 8U);
}

TEST_F(DelimitedText, WarnsOfRowsWithinTheQuotesOfOne) {
    const InspectedMatrix matrix =
        read("gene\ta\tb\nG1\t1\t2\n\"TUB1\t3\t4\nG3\t5\t6\nPGK1\"\t7\t8\nG5\t1\t1\n");
    EXPECT_THAT(matrix.row_names, ElementsAre("G1", "TUB1\t3\t4 G3\t5\t6 PGK1", "G5"));
    ASSERT_EQ(matrix.report.warnings.size(), 1U);
    EXPECT_THAT(matrix.report.warnings[0], testing::StartsWith(":3: lines 3 to 5 are one row"));
    EXPECT_THAT(read("gene\ta\tb\nG1\t1\t2\n\"G\n2\"\t3\t4\n").report.notes,
                ElementsAre("lines 3 to 4 are one row, with a line end in quotes"));
}

TEST_F(DelimitedText, IsReadBehindLinesThatAreLongerThanTheHead) {
    constexpr std::size_t kColumns = 40000;
    constexpr std::size_t kLines = 30;
    const auto line = [](const std::string& name, const std::string& value) {
        std::string text = name;
        for (std::size_t d = 0; d < kColumns; ++d) {
            text += '\t' + value;
        }
        return text + '\n';
    };
    std::string content = "#1.3\n3\t40000\t0\t30\n" + line("id", "s");
    for (std::size_t n = 0; n < kLines; ++n) {
        content += line("dose", "5");
    }
    const InspectedMatrix matrix =
        read(content + line("G1", "1") + line("G2", "2") + line("G3", "3"));
    EXPECT_THAT(matrix.row_names, ElementsAre("G1", "G2", "G3"));
    EXPECT_THAT(matrix.row_lines, ElementsAre(34U, 35U, 36U));
}

}  // namespace
}  // namespace ovik
