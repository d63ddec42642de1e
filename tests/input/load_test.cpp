#include "input/load.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/matrix_source.h"
#include "input/table_layout.h"
#include "util/input_error.h"

#include "tests/support/gzip.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsNan;
using testing::StartsWith;

constexpr const char* kText = "gene\ta\tb\nG1\t1\t2.5\nG2\t-3\tNA\nG3\t0\t7\nG4\t5\t6\n";
constexpr const char* kMarket =
    "%%MatrixMarket matrix array real general\n4 2\n1\n-3\n0\n5\n2.5\nNaN\n7\n6\n";

std::string npy_of_text() {
    const double values[] = {1, 2.5, -3, std::nan(""), 0, 7, 5, 6};
    std::string content = "{'descr': '<f8', 'fortran_order': False, 'shape': (4, 2)}";
    content =
        std::string("\x93NUMPY\x01\0", 8) + static_cast<char>(content.size()) + '\0' + content;
    content.resize(content.size() + sizeof values);
    std::memcpy(content.data() + content.size() - sizeof values, values, sizeof values);
    return content;
}

std::vector<double> values_of(const LoadedMatrix& loaded) {
    const double* const values = loaded.matrix.values.get();
    return {values, values + loaded.matrix.report.rows * loaded.matrix.report.columns};
}

class Load : public testing::Test {
  protected:
    LoadedMatrix loaded(const std::string& content) {
        remarks_.clear();
        return load(directory_.write("m", content), options_, remarks_);
    }

    std::string refusal(const std::string& content) {
        return test::refusal_of([&] { loaded(content); });
    }

    test::TemporaryDirectory directory_;
    LoadOptions options_;
    std::vector<Remark> remarks_;
};

TEST_F(Load, GivesTheSameMatrixOfEveryFormat) {
    const struct {
        const char* format;
        std::string content;
        const char* first_name;
    } kCases[] = {
        {"text", kText, "G1"},
        {"text", test::gzipped(kText), "G1"},
        {"npy", npy_of_text(), "1"},
        {"matrix market", kMarket, "1"},
    };

    for (const auto& [format, content, first_name] : kCases) {
        SCOPED_TRACE(format);
        const LoadedMatrix matrix = loaded(content);
        EXPECT_EQ(matrix.format, format);
        EXPECT_THAT(values_of(matrix), ElementsAre(1.0, 2.5, -3.0, 0.0, 0.0, 7.0, 5.0, 6.0));
        EXPECT_EQ(matrix.missing, 1U);
        EXPECT_EQ(matrix.matrix.row_names.size(), 4U);
        EXPECT_EQ(matrix.matrix.row_names[0], first_name);
        EXPECT_EQ(matrix.matrix.row_lines.size(), 4U);
        EXPECT_THAT(matrix.labels, IsEmpty());
    }
}

TEST_F(Load, TakesDistancesAsTheyAre) {
    options_.holds_distances = true;
    // Genes in the header, as in the first column, are what a table of distances has.
    options_.is_gene = [](const std::string& /*name*/) { return true; };
    const LoadedMatrix matrix = loaded("gene\tA\tB\tC\nA\t0\t100\t2\nB\t100\t0\t3\nC\t2\t3\t0\n");
    EXPECT_THAT(values_of(matrix), ElementsAre(0, 100, 2, 100, 0, 3, 2, 3, 0));
    EXPECT_THAT(matrix.matrix.row_names, ElementsAre("A", "B", "C"));
    EXPECT_THAT(remarks_, IsEmpty());
    EXPECT_THAT(
        values_of(loaded("%%MatrixMarket matrix array real symmetric\n3 3\n0\n1\n2\n0\n3\n0\n")),
        ElementsAre(0, 1, 2, 1, 0, 3, 2, 3, 0));
}

TEST_F(Load, RefusesWhatAreNoDistances) {
    options_.holds_distances = true;
    EXPECT_THAT(
        refusal("gene\tA\tB\tC\nA\t0\t1\t2\nB\t1\t0\t3\nC\t2\t4\t0\n"),
        HasSubstr("m:4: row 3 (\"C\"), column 2 (\"B\"): the distance is 4, and 3 the other"));
    EXPECT_THAT(refusal("gene\tA\tC\tB\nA\t0\t1\t2\nB\t1\t0\t3\nC\t2\t3\t0\n"),
                HasSubstr("row 2 is \"B\", and column 2 is \"C\""));
    EXPECT_THAT(refusal("gene\tA\tB\tC\nA\t0\tNA\t2\nB\t1\t0\t3\nC\t2\t3\t0\n"),
                HasSubstr("m:2: row 1 (\"A\"), column 2 (\"B\"): the distance is nan\n"));
    EXPECT_THAT(refusal(kText), HasSubstr("4 rows and 2 columns: a matrix of distances is square"));
    EXPECT_THAT(refusal("%%MatrixMarket matrix coordinate real symmetric\n3 3 3\n2 1 1\n3 1 2\n3 2 "
                        "3\n"),
                HasSubstr("m: holds a sparse matrix"));
}

TEST_F(Load, ChangesNoDistances) {
    options_.holds_distances = true;
    const char* const kDistances = "g\tA\tB\tC\nA\t0\t1\t2\nB\t1\t0\t3\nC\t2\t3\t0\n";
    options_.missing = MissingPolicy::Error;
    EXPECT_EQ(refusal(kDistances), "");
    options_.missing = MissingPolicy::RowMean;
    EXPECT_THAT(refusal(kDistances), StartsWith("missing: a distance cannot be filled in"));
    options_.missing.reset();
    options_.transformations.log1p = true;
    EXPECT_THAT(refusal(kDistances), StartsWith("distances are not transformed (log1p)"));
}

TEST_F(Load, PrintsNothing) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    loaded(npy_of_text());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(remarks_.size(), 2U);
}

TEST_F(Load, RemarksInTheOrderInWhichThingsAreFound) {
    loaded("%%MatrixMarket matrix array real general\n3 1\n1\n2\nNaN\n");
    ASSERT_EQ(remarks_.size(), 2U);
    EXPECT_EQ(remarks_[0].kind, Remark::Kind::Note);
    EXPECT_EQ(
        remarks_[0].text,
        directory_.file("m") +
            ": its rows have no names, and are called by their numbers; row-names FILE gives them "
            "names");
    EXPECT_EQ(remarks_[1].kind, Remark::Kind::Warning);
    EXPECT_THAT(remarks_[1].text,
                StartsWith(directory_.file("m") +
                           ": 1 of 3 values is missing, in 1 of 3 rows and 1 of 1 column, and read "
                           "as 0\n  row \"3\", column 1\n"));
    options_.missing = MissingPolicy::Drop;
    loaded("# a note\nh\tb\nG1\t1\nG1\t2\nG3\t\nG4\t4\n");
    ASSERT_EQ(remarks_.size(), 3U);
    EXPECT_EQ(remarks_[0].kind, Remark::Kind::Note);
    EXPECT_EQ(remarks_[0].text, directory_.file("m") + ": line 1 is above the header, and no rows");
    EXPECT_THAT(remarks_[1].text, HasSubstr("1 row repeats the name of an earlier one"));
    EXPECT_EQ(remarks_[2].kind, Remark::Kind::Information);
    EXPECT_EQ(
        remarks_[2].text,
        directory_.file("m") +
            ": 1 of 4 values is missing, in 1 of 4 rows and 1 of 1 column: 1 row is left out, 3 "
            "remain");
}

TEST_F(Load, KeepsTheRemarksOnAMatrixThatIsThenRefused) {
    EXPECT_THAT(refusal("h\tb\nG1\t0\nG1\t0\nG3\t0\n"), HasSubstr("all rows hold the same values"));
    ASSERT_EQ(remarks_.size(), 1U);
    EXPECT_THAT(remarks_[0].text, HasSubstr("repeats the name"));
}

TEST_F(Load, TakesNamesAndLabelsFromFiles) {
    options_.row_names_file = directory_.write("names", "A\nB\nC\nB\n");
    options_.labels_file = directory_.write("labels", "a\nb\nc\nd\n");
    options_.missing = MissingPolicy::Drop;
    const LoadedMatrix matrix = loaded(kMarket);
    EXPECT_THAT(matrix.matrix.row_names, ElementsAre("A", "C", "B"));
    EXPECT_THAT(matrix.labels, ElementsAre("a", "c", "d"));
    ASSERT_EQ(remarks_.size(), 2U);
    EXPECT_THAT(remarks_[0].text, HasSubstr("1 row repeats the name of an earlier one (\"B\")"));
    EXPECT_THAT(refusal(kText),
                StartsWith("row-names: the rows of " + directory_.file("m") + " have names"));
    options_.row_names_file = directory_.write("names", "A\n");
    EXPECT_THAT(refusal(kMarket), HasSubstr("holds 1 name, but the matrix has 4 rows"));
    options_.row_names_file.clear();
    options_.labels_file = directory_.write("labels", "a\n");
    EXPECT_THAT(refusal(kText), HasSubstr("holds 1 label, but the matrix has 4 rows"));
}

TEST_F(Load, NumbersTheRowsOfTextWithoutNames) {
    options_.has_names = false;
    EXPECT_THAT(loaded("a\tb\n1\t2\n3\t4\n5\t7\n").matrix.row_names, ElementsAre("1", "2", "3"));
    options_.row_names_file = directory_.write("names", "A\nB\nC\n");
    EXPECT_THAT(loaded("a\tb\n1\t2\n3\t4\n5\t7\n").matrix.row_names, ElementsAre("A", "B", "C"));
}

TEST_F(Load, WarnsOfGenesInColumns) {
    loaded("s\tYAL001C\tYAL002W\tYAL003W\nt0\t1\t2\t3\nt1\t1\t2\t4\nt2\t5\t2\t3\n");
    ASSERT_EQ(remarks_.size(), 1U);
    EXPECT_EQ(remarks_[0].kind, Remark::Kind::Warning);
    EXPECT_THAT(remarks_[0].text, HasSubstr("m: 3 of 3 columns are named as genes"));
}

TEST_F(Load, LeavesMissingValuesAsAskedFor) {
    options_.missing = MissingPolicy::Leave;
    options_.check_values = false;
    const LoadedMatrix matrix = loaded(kText);
    EXPECT_THAT(values_of(matrix), ElementsAre(1.0, 2.5, -3.0, IsNan(), 0.0, 7.0, 5.0, 6.0));
    EXPECT_EQ(matrix.missing, 1U);
    EXPECT_THAT(remarks_, IsEmpty());
}

TEST_F(Load, RefusesMissingValuesAsAskedFor) {
    options_.missing = MissingPolicy::Error;
    options_.spell = [](const std::string& option, const std::string& value) {
        return "<" + option + value + ">";
    };
    EXPECT_EQ(refusal(kText),
              directory_.file("m") +
                  ": 1 of 8 values is missing, in 1 of 4 rows and 1 of 2 columns\n"
                  "  line 3: row \"G2\", column \"b\" (field 3)\nFill them in, or choose with "
                  "<missing> what "
                  "becomes of them.");
    EXPECT_THAT(remarks_, IsEmpty());
}

TEST_F(Load, ChecksTheValuesThatAreLeftIfAskedTo) {
    options_.missing = MissingPolicy::Drop;

    const struct {
        const char* content;
        std::size_t rows;
        const char* reason;
    } kCases[] = {
        {"h\nA\t1\nB\t2\nC\tNA\n", 2, "m, without the rows that lack values: has 2 rows"},
        {"h\nA\t1\nB\t1\nC\t1\n", 3, "m: all rows hold the same values"},
        {"h\nA\t1\nB\t1\nC\t1e301\n", 3, "m: the values are too large"},
    };

    for (const auto& [content, rows, reason] : kCases) {
        options_.check_values = true;
        EXPECT_THAT(refusal(content), HasSubstr(reason));
        options_.check_values = false;
        EXPECT_EQ(loaded(content).matrix.report.rows, rows);
    }
}

TEST_F(Load, RefusesWhatIsNoMatrixWhateverIsAskedFor) {
    options_.check_values = false;
    options_.missing = MissingPolicy::Leave;
    std::string infinite = npy_of_text();
    const double infinity = -std::numeric_limits<double>::infinity();
    std::memcpy(infinite.data() + infinite.size() - sizeof infinity, &infinity, sizeof infinity);

    const struct {
        std::string content;
        const char* reason;
    } kCases[] = {
        {"h\nA\t1\nB\t2\nC\tinf\n", "m:4: field 2 of row \"C\" is \"inf\", which is not a finite"},
        {infinite, "m: column 2 of row 4 is \"-inf\", which is not a finite"},
        {"h\nA\t1\nB\t2\t3\nC\t4\n", "m:3: row \"B\" has 2 values"},
        {"h\nA\t1\nB\t2\n", "m: has 2 rows"},
        {"PK\x03\x04", "m: this is a zip archive"},
    };

    for (const auto& [content, reason] : kCases) {
        EXPECT_THAT(refusal(content), HasSubstr(reason));
    }
}

TEST_F(Load, LearnsWhatTheColumnsAreIfAskedTo) {
    options_.missing = MissingPolicy::RowMean;
    options_.transformations = {.log1p = false, .centre = Centring::Columns, .scale = true};
    EXPECT_TRUE(loaded(kText).columns.means.empty());
    options_.learns_columns = true;
    const KnownColumns columns = loaded(kText).columns;
    EXPECT_THAT(columns.names, ElementsAre("a", "b"));
    EXPECT_THAT(columns.means, ElementsAre(0.75, 3.125));
    EXPECT_THAT(columns.subtracted, ElementsAre(0.75, 3.125));
    EXPECT_EQ(columns.divisors.size(), 2U);
}

TEST_F(Load, PutsRowsThroughWhatIsKnownOfTheColumns) {
    KnownColumns known{{"b", "a"}, {10.0, 20.0}, {1.0, 2.0}, {4.0, 5.0}};
    options_.known_columns = &known;
    options_.missing = MissingPolicy::ColumnMean;
    options_.transformations = {.log1p = false, .centre = Centring::Columns, .scale = true};
    const LoadedMatrix matrix = loaded("gene\ta\tb\nG1\t7\tNA\n");
    EXPECT_THAT(values_of(matrix), ElementsAre((10.0 - 1.0) / 4.0, (7.0 - 2.0) / 5.0));
    EXPECT_THAT(matrix.matrix.column_names, ElementsAre("b", "a"));
    EXPECT_THAT(refusal("gene\tc\ta\nG1\t7\t1\n"),
                HasSubstr("m: 1 column of the map is missing: \"b\""));
    EXPECT_THAT(refusal("gene\ta\tb\n"), HasSubstr("m: "));
    options_.missing = MissingPolicy::Drop;
    EXPECT_THAT(refusal("gene\ta\tb\nG1\t7\tNA\n"),
                HasSubstr("has 0 rows, so there is none to place"));
}

TEST_F(Load, AsksBeforeItReadsText) {
    char seen = 0;
    options_.before_reading = [&seen](const MatrixSource& source, const TableLayout& layout) {
        EXPECT_TRUE(source.isSeekable());
        seen = layout.delimiter;
    };
    loaded("h\nA,1\nB,2\nC,3\n");
    EXPECT_EQ(seen, ',');
    options_.delimiter = ';';
    refusal("h\nA,1\nB,2\nC,3\n");
    EXPECT_EQ(seen, ';');
    options_.before_reading = [](const MatrixSource& /*source*/, const TableLayout& /*layout*/) {
        throw InputError("too large");
    };
    EXPECT_EQ(refusal("h\nA;1\nB;2\n"), "too large");
}

}  // namespace
}  // namespace ovik
