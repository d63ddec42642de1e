#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/command_test.h"

/// What the command does to values before it embeds them, and who is told of it.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;
using testing::Not;

constexpr int kRows = 40;
constexpr int kColumns = 5;

double count_of(int n, int d) {
    return static_cast<double>((n * 37 + d * 101 + n * d * 7) % 997);
}

/// @param value  of row n and column d
std::string matrix_of(const std::function<double(int, int)>& value) {
    std::string content = "gene\ta\tb\tc\td\te";
    for (int n = 0; n < kRows; ++n) {
        content += "\nGENE" + std::to_string(n);
        for (int d = 0; d < kColumns; ++d) {
            char text[40];
            std::snprintf(text, sizeof text, "\t%.17g", value(n, d));
            content += text;
        }
    }
    return content + "\n";
}

class TransformationsOfTheCommand : public test::CommandTest {
  protected:
    /// The table of a run, and nothing else of its results.
    std::string tableOf(const std::string& content, const std::vector<std::string>& options) {
        std::filesystem::remove_all(results_);
        std::vector<std::string> all = {"--no-plots"};
        all.insert(all.end(), options.begin(), options.end());
        const CommandOutcome outcome = run_on(content, all);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        out_ = outcome.out;
        return table();
    }

    std::string counts_ = matrix_of(count_of);
    std::string out_;
};

TEST_F(TransformationsOfTheCommand, GiveTheMapOfAFileOfTransformedValues) {
    const std::string logarithms =
        matrix_of([](int n, int d) { return std::log1p(count_of(n, d)); });
    EXPECT_EQ(tableOf(counts_, {"--log1p"}), tableOf(logarithms, {}));
    EXPECT_NE(tableOf(counts_, {"--log1p"}), tableOf(counts_, {}));
    const std::string centred = matrix_of([](int n, int d) {
        double sum = 0.0;
        for (int i = 0; i < kColumns; ++i) {
            sum += count_of(n, i);
        }
        return count_of(n, d) - sum / kColumns;
    });
    EXPECT_EQ(tableOf(counts_, {"--center", "rows"}), tableOf(centred, {}));
    const std::string scaled = matrix_of([](int n, int d) { return 8.0 * count_of(n, d); });
    EXPECT_EQ(tableOf(counts_, {"--scale"}), tableOf(scaled, {"--scale"}));
}

TEST_F(TransformationsOfTheCommand, AreTheSameBytesForAnyNumberOfThreads) {
    const std::vector<std::string> all = {"--log1p", "--center", "columns", "--scale", "-j"};
    auto one = all;
    one.emplace_back("1");
    auto three = all;
    three.emplace_back("3");
    EXPECT_EQ(tableOf(counts_, one), tableOf(counts_, three));
}

TEST_F(TransformationsOfTheCommand, AreNamedOnConsolePageAndReport) {
    const std::string report = directory_.file("run.json");
    const CommandOutcome outcome =
        run_on(counts_, {"--log1p", "--center", "rows", "--scale", "--json", report});
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out,
                HasSubstr("m.txt: transformed by log1p, center rows, scale (standard deviations "
                          "with n - 1)\n"));
    EXPECT_THAT(test::read_file(report),
                HasSubstr("\"transformations\":\"log1p, center rows, scale\""));
    EXPECT_THAT(result("m_tsne_13_0.html"), HasSubstr("log1p, center rows, scale"));
}

TEST_F(TransformationsOfTheCommand, ArePartOfTheIdentityOfACheckpoint) {
    const std::string checkpoint = directory_.file("run.ckpt");
    tableOf(counts_, {"--center", "columns", "--checkpoint", checkpoint});
    EXPECT_THAT(run_on(counts_, {"--resume", checkpoint}).err,
                HasSubstr("\n  transformations: center columns in the checkpoint, none now\n"
                          "  the values of the matrix are others\n"));
    EXPECT_THAT(run_on(counts_, {"--resume", checkpoint, "--log1p"}).err,
                HasSubstr("\n  transformations: center columns in the checkpoint, log1p now\n"));
    EXPECT_EQ(run_on(counts_, {"--resume", checkpoint}).exit_status, kBadInput);
    EXPECT_EQ(run_on(counts_, {"--resume", checkpoint, "--center", "columns"}).exit_status,
              kSuccess);
}

TEST_F(TransformationsOfTheCommand, ArePartOfTheIdentityThoughTheyChangeNoValue) {
    // Columns whose means are 0 already.
    const std::string centred =
        matrix_of([](int n, int d) { return (n % 2 == 0 ? 1.0 : -1.0) * (1 + n / 2 + d); });
    const std::string checkpoint = directory_.file("run.ckpt");
    tableOf(centred, {"--center", "columns", "--checkpoint", checkpoint});
    const std::string refusal = run_on(centred, {"--resume", checkpoint}).err;
    EXPECT_THAT(refusal, HasSubstr("transformations: center columns in the checkpoint, none now"));
    EXPECT_THAT(refusal, Not(HasSubstr("the values of the matrix are others")));
}

TEST_F(TransformationsOfTheCommand, AreRefusedWhereTheyMakeNoSense) {
    EXPECT_THAT(refusal("g\ta\nG1\t1\nG2\t-1\nG3\t2\n", {"--log1p"}),
                HasSubstr("m.txt:3: row \"G2\" has a value below 0 in column \"a\""));
    const CommandOutcome of_one_column =
        run_on("g\ta\nG1\t1\nG2\t-1\nG3\t2\n", {"--center", "rows"});
    EXPECT_EQ(of_one_column.exit_status, kBadInput);
    EXPECT_THAT(of_one_column.err, HasSubstr("all rows hold the same values"));
    EXPECT_THAT(refusal(counts_, {"--center", "medians"}), HasSubstr("--center"));
}

TEST_F(TransformationsOfTheCommand, FollowTheTreatmentOfMissingValues) {
    EXPECT_EQ(tableOf("g\ta\tb\nG1\t1\tNA\nG2\t4\t2\nG3\t9\t5\nG4\t0\t1\n",
                      {"--missing", "zero", "--log1p", "--center", "rows"}),
              tableOf("g\ta\tb\nG1\t1\t0\nG2\t4\t2\nG3\t9\t5\nG4\t0\t1\n",
                      {"--log1p", "--center", "rows"}));
}

/// Six times of a course, of 40 genes each, with the times in the columns.
std::string courses() {
    std::string content = "gene";
    for (const int d : {0, 1, 2, 3, 4, 5}) {
        content += "\tt" + std::to_string(d);
    }
    for (int n = 0; n < kRows; ++n) {
        content += "\nGENE" + std::to_string(n);
        for (const int d : {0, 1, 2, 3, 4, 5}) {
            content += "\t" + std::to_string(count_of(n, d));
        }
    }
    return content + "\n";
}

/// The same with the times in the rows.
std::string turned_courses() {
    std::string content = "time";
    for (int n = 0; n < kRows; ++n) {
        content += "\tGENE" + std::to_string(n);
    }
    for (const int d : {0, 1, 2, 3, 4, 5}) {
        content += "\nt" + std::to_string(d);
        for (int n = 0; n < kRows; ++n) {
            content += "\t" + std::to_string(count_of(n, d));
        }
    }
    return content + "\n";
}

TEST_F(TransformationsOfTheCommand, TransposeEmbedsTheColumns) {
    const std::string expected = tableOf(turned_courses(), {"--names", "other"});
    EXPECT_EQ(tableOf(courses(), {"--transpose"}), expected);
    EXPECT_THAT(expected, HasSubstr("\nt5,"));
    EXPECT_THAT(out_, HasSubstr("transposed, so that its 6 columns are the points"));
    EXPECT_THAT(out_, HasSubstr("Perplexity 1.66, the largest that is advised for 6 rows"));
    EXPECT_THAT(out_, Not(HasSubstr("Gene table")));
}

TEST_F(TransformationsOfTheCommand, TransposeJoinsLabelsByTheNamesOfColumns) {
    const CommandOutcome outcome = run_on(
        courses(),
        {"--transpose", "--no-plots", "--labels", directory_.write("l", "t\tlight\nt3\ton\n")});
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("Labels: 1 of 6 rows labelled"));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(TransformationsOfTheCommand, TransposeLooksUpColumnsThatAreGenes) {
    std::string content = "time\tCDC28\tHO\tYAL001C\tnone\n";
    for (const char* const row : {"t0\t1\t2\t3\t4\n", "t1\t2\t5\t1\t1\n", "t2\t5\t3\t2\t9\n"}) {
        content += row;
    }
    const std::vector<std::string> arguments = {
        directory_.write("m.txt", content), "--out-dir", results_, "--no-plots", "--transpose"};
    const CommandOutcome genes = run(arguments);
    EXPECT_EQ(genes.exit_status, kSuccess) << genes.err;
    EXPECT_THAT(genes.out, HasSubstr("Gene table: 3 of 4 rows found"));
    const CommandOutcome others = run(
        {directory_.write("m.txt", courses()), "--out-dir", results_, "--no-plots", "--transpose"});
    EXPECT_THAT(others.out, Not(HasSubstr("Gene table")));
    EXPECT_EQ(others.err, "");
}

TEST_F(TransformationsOfTheCommand, TransposeAsksForNamesOfColumns) {
    const CommandOutcome outcome =
        run_on("G1\t1\t2\t3\nG2\t3\t4\t7\n", {"--transpose", "--no-header"});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_THAT(
        outcome.err,
        HasSubstr("--transpose makes points of the columns, and its 3 columns have no names"));
    EXPECT_THAT(outcome.err, HasSubstr("--row-names FILE"));
}

}  // namespace
}  // namespace ovik
