#include "input/transpose.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/load.h"

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Transpose : public testing::Test {
  protected:
    Transpose() { options_.transformations.transpose = true; }

    LoadedMatrix loaded(const std::string& content) {
        remarks_.clear();
        return load(directory_.write("m", content), options_, remarks_);
    }

    std::string refusal(const std::string& content) {
        return test::refusal_of([&] { loaded(content); });
    }

    static std::vector<double> valuesOf(const LoadedMatrix& loaded) {
        const double* const values = loaded.matrix.values.get();
        return {values, values + loaded.matrix.report.rows * loaded.matrix.report.columns};
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("m");
    LoadOptions options_;
    std::vector<Remark> remarks_;
};

constexpr const char* kText = "gene\tt0\tt1\tt2\nG1\t1\t2\t3\nG2\t4\t5\t6.5\n";

TEST_F(Transpose, MakesRowsOfColumnsWithTheirNames) {
    const LoadedMatrix loaded_matrix = loaded(kText);
    EXPECT_EQ(loaded_matrix.matrix.report.rows, 3U);
    EXPECT_EQ(loaded_matrix.matrix.report.columns, 2U);
    EXPECT_THAT(valuesOf(loaded_matrix), ElementsAre(1.0, 4.0, 2.0, 5.0, 3.0, 6.5));
    EXPECT_THAT(loaded_matrix.matrix.row_names, ElementsAre("t0", "t1", "t2"));
    EXPECT_THAT(loaded_matrix.matrix.column_names, ElementsAre("G1", "G2"));
    EXPECT_THAT(loaded_matrix.matrix.row_lines, ElementsAre(0U, 0U, 0U));
    ASSERT_EQ(remarks_.size(), 1U);
    EXPECT_EQ(remarks_[0].kind, Remark::Kind::Information);
    EXPECT_EQ(remarks_[0].text, path_ + ": transposed, so that its 3 columns are the points");
}

TEST_F(Transpose, ComesBehindWhatIsDoneToRowsAndColumnsOfTheFile) {
    options_.transformations.centre = Centring::Rows;
    options_.missing = MissingPolicy::RowMean;
    const LoadedMatrix loaded_matrix = loaded("g\ta\tb\tc\nG1\t1\tNA\t5\nG2\t2\t4\t6\n");
    EXPECT_THAT(valuesOf(loaded_matrix), ElementsAre(-2.0, -2.0, 0.0, 0.0, 2.0, 2.0));
    EXPECT_THAT(loaded_matrix.matrix.filled, ElementsAre(false, false, true, false, false, false));
    EXPECT_EQ(names_of(options_.transformations), "center rows, transpose");
    options_.missing = MissingPolicy::Drop;
    options_.transformations.centre = Centring::None;
    EXPECT_THAT(valuesOf(loaded("g\ta\tb\tc\nG1\t1\tNA\t5\nG2\t2\t4\t6\n")),
                ElementsAre(2.0, 4.0, 6.0));
}

TEST_F(Transpose, LeavesMissingValuesThatAreToBeLeft) {
    options_.missing = MissingPolicy::Leave;
    options_.check_values = false;
    EXPECT_THAT(valuesOf(loaded("g\ta\tb\nG1\t1\tNA\nG2\t2\t4\n")),
                ElementsAre(1.0, 2.0, testing::IsNan(), 4.0));
}

TEST_F(Transpose, TakesLabelsOfTheColumns) {
    options_.labels_file = directory_.write("labels", "dark\nlight\nlight\n");
    EXPECT_THAT(loaded(kText).labels, ElementsAre("dark", "light", "light"));
    options_.labels_file = directory_.write("labels", "dark\nlight\n");
    EXPECT_THAT(refusal(kText), HasSubstr("labels"));
}

TEST_F(Transpose, RefusesColumnsWithoutNamesOfTheirOwn) {
    EXPECT_THAT(
        refusal("g\ta\tb\ta\nG1\t1\t2\t3\nG2\t4\t5\t6\n"),
        HasSubstr(": columns 1 and 3 of the values are both called \"a\", which is to be "
                  "the name of a point\nGive each column a name of its own in the header."));
    EXPECT_THAT(refusal("g\ta\t\tb\nG1\t1\t2\t3\nG2\t4\t5\t6\n"),
                HasSubstr(": column 2 of the values has no name"));
    options_.has_header = false;
    EXPECT_THAT(refusal("G1\t1\t2\t3\nG2\t4\t5\t6\n"),
                HasSubstr(": transpose makes points of the columns, and its 3 columns have no "
                          "names\nGive the text a header line with a name for each column, or give "
                          "the names, one per line, with row-names FILE."));
}

TEST_F(Transpose, TakesNamesOfAFileForColumnsThatHaveNone) {
    options_.row_names_file = directory_.write("names", "x\ny\nz\n");
    EXPECT_THAT(refusal(kText),
                StartsWith("row-names: the columns of " + path_ + " have names of their own"));
    options_.has_header = false;
    const LoadedMatrix loaded_matrix = loaded("G1\t1\t2\t3\nG2\t4\t5\t6\n");
    EXPECT_THAT(loaded_matrix.matrix.row_names, ElementsAre("x", "y", "z"));
    options_.has_names = false;
    EXPECT_THAT(loaded("1\t2\t3\n4\t5\t6\n").matrix.column_names, ElementsAre("1", "2"));
}

TEST_F(Transpose, AsksForThreeColumns) {
    EXPECT_THAT(refusal("g\ta\tb\nG1\t1\t2\nG2\t3\t4\nG3\t3\t4\n"),
                HasSubstr(", transposed: has 2 rows, and an embedding needs at least 3"));
    EXPECT_THAT(refusal("g\ta\tb\tc\nG1\t1\t1\t1\nG2\t3\t3\t3\n"),
                HasSubstr("all rows hold the same values"));
}

TEST_F(Transpose, SaysNothingOfGenesInColumns) {
    loaded("s\tYAL001C\tYAL002W\tYAL003W\ns1\t1\t2\t3\ns2\t4\t5\t6\n");
    EXPECT_EQ(remarks_.size(), 1U);
    options_.transformations.transpose = false;
    loaded("s\tYAL001C\tYAL002W\tYAL003W\ns1\t1\t2\t3\ns2\t4\t5\t6\ns3\t4\t5\t7\n");
    ASSERT_EQ(remarks_.size(), 1U);
    EXPECT_THAT(remarks_[0].text,
                HasSubstr("If the genes should be mapped, transpose makes points of the columns."));
}

}  // namespace
}  // namespace ovik
