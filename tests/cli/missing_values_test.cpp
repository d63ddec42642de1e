#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/command_test.h"

/// Matrices that lack values, and `--missing`.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;

/// In this one, 4 of 15 values are missing; the line of G4 ends early, but for its delimiters.
constexpr const char* kMatrix =
    "g,a,b,c\n"
    "G1,1,,3\n"
    "G2,4,NA,7\n"
    "# note\n"
    "G3,2,5,6\n"
    "G4,-1,,\n"
    "G5,0,8,2\n";

class MissingValues : public test::CommandTest {
  protected:
    /// The table of a run on a matrix whose values are all there.
    std::string table_of(const std::string& content, const std::vector<std::string>& options = {}) {
        std::filesystem::remove_all(results_);
        const CommandOutcome outcome = run_on(content, options);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return table();
    }
};

TEST_F(MissingValues, AreZeroWithAWarningByDefault) {
    const CommandOutcome outcome = run_on(kMatrix);
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.err,
              "ovik-tsne: warning: " + matrix_path() +
                  ": 4 of 15 values are missing, in 3 of 5 rows and 2 of 3 columns, and read as 0\n"
                  "  line 2: row \"G1\", column \"b\" (field 3)\n"
                  "  line 3: row \"G2\", column \"b\" (field 3)\n"
                  "  line 6: row \"G4\", column \"b\" (field 3)\n"
                  "  ...\n"
                  "  most in row \"G4\": 2, and in column \"b\" (field 3): 3\n"
                  "--missing can also fill in means (row-mean, column-mean), leave such rows out "
                  "(drop), or refuse them (error).\n");
    EXPECT_EQ(table(), table_of("g,a,b,c\nG1,1,0,3\nG2,4,0,7\nG3,2,5,6\nG4,-1,0,0\nG5,0,8,2\n"));
}

TEST_F(MissingValues, AreTreatedAsAskedFor) {
    const struct {
        const char* policy;
        const char* report;
        const char* filled;
    } kCases[] = {
        {"zero", "replaced by 0", "g,a,b,c\nG1,1,0,3\nG2,4,0,7\nG3,2,5,6\nG4,-1,0,0\nG5,0,8,2\n"},
        {"row-mean",
         "replaced by the means of their rows",
         "g,a,b,c\nG1,1,2,3\nG2,4,5.5,7\nG3,2,5,6\nG4,-1,-1,-1\nG5,0,8,2\n"},
        {"column-mean",
         "replaced by the means of their columns",
         "g,a,b,c\nG1,1,6.5,3\nG2,4,6.5,7\nG3,2,5,6\nG4,-1,6.5,4.5\nG5,0,8,2\n"},
    };

    for (const auto& [policy, report, filled] : kCases) {
        std::filesystem::remove_all(results_);
        const CommandOutcome outcome = run_on(kMatrix, {"--missing", policy});
        EXPECT_EQ(outcome.exit_status, kSuccess);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.out.find("-- " + matrix_path() +
                                   ": 4 of 15 values are missing, in 3 of 5 rows and 2 of 3 "
                                   "columns: " +
                                   report + "\n"),
                  0U);
        EXPECT_EQ(table(), table_of(filled)) << policy;
    }
}

TEST_F(MissingValues, TakeTheirRowsAndLabelsWithThemWhenDropped) {
    const std::string matrix =
        "g,a,b\nG1,1,2\nG2,,4\nG3,5,4\nG4,7,0\nG5,?,?\nG6,1,9\nG7,2,2\nG8,9,null\n";
    const std::string labels = directory_.write("labels", "l1\nl2\nl3\nl4\nl5\nl6\nl7\nl8\n");
    const CommandOutcome outcome = run_on(matrix, {"--missing", "drop", "--labels", labels});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_NE(outcome.out.find(": 3 rows are left out, 5 remain\n"), std::string::npos);
    const std::string page = result("m_tsne_1_3.html");
    EXPECT_NE(page.find("\"labels\":[\"l1\",\"l3\",\"l4\",\"l6\",\"l7\"]"), std::string::npos);
    const std::string dropped = table();
    const CommandOutcome rest = run_on("g,a,b\nG1,1,2\nG3,5,4\nG4,7,0\nG6,1,9\nG7,2,2\n");
    EXPECT_EQ(rest.exit_status, kSuccess);
    EXPECT_EQ(dropped, table());
}

TEST_F(MissingValues, AreRefusedAsAskedFor) {
    EXPECT_EQ(refusal("g,a\nG1,1\nG2,-\nG3,3\nG4,4\n", {"--missing", "error"}),
              "ovik-tsne: " + matrix_path() +
                  ": 1 of 4 values is missing, in 1 of 4 rows and 1 of 1 column\n"
                  "  line 3: row \"G2\", column \"a\" (field 2)\n"
                  "  1 row has no number at all: row \"G2\"\n"
                  "Fill them in, or choose with --missing what becomes of them.\n");
    EXPECT_EQ(run_on("g,a\nG1,1\nG2,2\nG3,4\n", {"--missing", "error"}).exit_status, kSuccess);
}

TEST_F(MissingValues, LeaveNoMeanInRowsWithoutNumbers) {
    EXPECT_EQ(refusal("g,a,b\nG1,1,2\nG2,NA,NA\nG3,3,4\nG4,4,4\n", {"--missing", "row-mean"}),
              "ovik-tsne: " + matrix_path() +
                  ":3: row \"G2\" has no number of which to take the mean\n"
                  "Take such rows out (--missing drop leaves out all rows with missing values), or "
                  "fill in the means of the columns (--missing column-mean).\n");
}

TEST_F(MissingValues, TellNothingInColumnsWithoutNumbers) {
    const CommandOutcome outcome =
        run_on("g,a,b\nG1,1,NA\nG2,3,NA\nG3,4,NA\n", {"--missing", "column-mean"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(table(), table_of("g,a\nG1,1\nG2,3\nG3,4\n"));
}

TEST_F(MissingValues, MayLeaveTooFewRows) {
    const CommandOutcome outcome = run_on("g,a\nG1,1\nG2,2\nG3,\nG4,NA\n", {"--missing", "drop"});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_NE(outcome.err.find(", without the rows that lack values: has 2 rows, and an embedding "
                               "needs at least 3\n"),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(results_));
}

TEST_F(MissingValues, MayLeaveEqualRows) {
    EXPECT_NE(run_on("g,a\nG1,\nG2,0\nG3,NA\n").err.find("all rows hold the same values"),
              std::string::npos);
}

}  // namespace
}  // namespace ovik
