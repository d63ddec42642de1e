#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/command_test.h"

/// The real program makes the maps of a report again, and says whether they are equal.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;
using testing::Not;

constexpr int kDifferent = 3;

/// Rows of a matrix of which one value is given.
std::string matrix(const std::string& value = "0.5", const std::string& first_name = "G0") {
    std::string content = "gene\ta\tb\tc\n";
    for (int n = 0; n < 70; ++n) {
        content += (n == 0 ? first_name : "G" + std::to_string(n)) + "\t" +
                   std::to_string(n * n % 13) + "\t" + std::to_string(n * 7 % 11) + "\t" +
                   (n == 9 ? value : std::to_string(n % 5)) + "\n";
    }
    return content;
}

class Reproduce : public test::CommandTest {
  protected:
    /// Makes a map and its report.
    void make(std::vector<std::string> options, const std::string& content = matrix()) {
        options.insert(options.end(), {"--no-plots", "--json", report_path()});
        const CommandOutcome outcome = run_on(content, options);
        ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    }

    [[nodiscard]] std::string report_path() const { return directory_.file("run.json"); }

    CommandOutcome reproduce(std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"--reproduce", report_path(), matrix_path()});
        return run(options);
    }

    /// Puts something else in the place of a member of the report.
    void change(const std::string& pointer, const json& value) {
        json report = json::parse(test::read_file(report_path()));
        report[json::json_pointer(pointer)] = value;
        directory_.write("run.json", report.dump());
    }

    void expect_equal(const std::vector<std::string>& options) {
        make(options);
        const CommandOutcome outcome = reproduce();
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr("-- Equal: the map"));
    }
};

TEST_F(Reproduce, FindsTheMapsOfARunEqual) {
    expect_equal({"-p", "7"});
    expect_equal({"-p", "7", "--preset", "refined"});
    expect_equal(
        {"-p", "7", "-t", "0", "--metric", "pearson", "--constant-rows", "drop", "-d", "3"});
    expect_equal({"-p", "7", "--precision", "float", "--center", "rows", "--scale"});
    expect_equal({"-p", "7", "--model", results_ + "/map.model", "--seed", "4"});
    expect_equal({"--affinity", "uniform", "--neighbours", "9"});
    expect_equal({"--multiscale", "4,9", "--learning-rate", "auto", "--gains", "constant"});
}

TEST_F(Reproduce, TakesAnyNumberOfThreads) {
    make({"-p", "7", "-j", "1"});
    const CommandOutcome outcome = reproduce({"-j", "3"});
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
}

TEST_F(Reproduce, LeavesNoFile) {
    make({"-p", "7", "--clusters", "--checkpoint", results_ + "/c.ckpt"});
    const std::string report = test::read_file(report_path());
    std::filesystem::remove_all(results_);
    const CommandOutcome outcome =
        test::run_command({"/bin/sh",
                           "-c",
                           "cd \"$1\" && \"$0\" --reproduce \"$2\" \"$3\"",
                           OVIK_TSNE_COMMAND,
                           directory_.prefix(),
                           report_path(),
                           matrix_path()});
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(results_));
    EXPECT_EQ(test::read_file(report_path()), report);
    // Matrix, report, and the directory above that of the results.
    EXPECT_EQ(directory_.entryCount(), 3U);
}

TEST_F(Reproduce, TakesEachPerplexityAndEachSeed) {
    make({"-p", "5,9", "--seeds", "2"});
    const CommandOutcome outcome = reproduce();
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("Equal: the map of perplexity 5 has the bits"));
    EXPECT_THAT(outcome.out, HasSubstr("Equal: the map of perplexity 9 has the bits"));
}

TEST_F(Reproduce, SaysInSilenceByItsStatusAlone) {
    make({"-p", "7"});
    const CommandOutcome outcome = reproduce({"-q"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Reproduce, NamesAnotherInputBeforeTheRun) {
    make({"-p", "7"});
    directory_.write("m.txt", matrix("0.25"));
    const CommandOutcome outcome = reproduce();
    EXPECT_EQ(outcome.exit_status, kDifferent);
    EXPECT_THAT(outcome.err, HasSubstr("the values of the input are not those of the report"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("iterations")));
    directory_.write("m.txt", matrix() + "Z\t1\t2\t3\n");
    EXPECT_THAT(reproduce().err,
                HasSubstr("the input has 71 rows and 3 columns, that of the report 70 rows and 3 "
                          "columns"));
}

TEST_F(Reproduce, GoesOnWhereNamesAloneDiffer) {
    make({"-p", "7"});
    directory_.write("m.txt", matrix("0.5", "Other"));
    const CommandOutcome outcome = reproduce();
    EXPECT_EQ(outcome.exit_status, kDifferent);
    EXPECT_THAT(outcome.err, HasSubstr("the names of the rows are not those of the report"));
    EXPECT_THAT(outcome.out, HasSubstr("Equal: the map"));
}

TEST_F(Reproduce, NamesTheLikelyCauseOfOtherBits) {
    make({"-p", "7"});
    change("/runs/0/embedding/digest", "0123456789abcdef");
    CommandOutcome outcome = reproduce();
    EXPECT_EQ(outcome.exit_status, kDifferent);
    EXPECT_THAT(outcome.err, HasSubstr("the map has other bits than that of " + report_path()));
    EXPECT_THAT(outcome.err, HasSubstr("not 0123456789abcdef"));
    EXPECT_THAT(outcome.err, HasSubstr("the costs of all iterations are the same"));
    EXPECT_THAT(outcome.err,
                HasSubstr("likely cause: version and platform are those of the report"));
    change("/platform/c_library", "glibc 2.17");
    outcome = reproduce();
    EXPECT_THAT(outcome.err, HasSubstr("likely cause: the report is of glibc 2.17 on"));
    EXPECT_THAT(outcome.err, HasSubstr("--numerics portable"));
    change("/version", "0.0.1");
    EXPECT_THAT(reproduce().err, HasSubstr("likely cause: the report is of version 0.0.1"));
}

TEST_F(Reproduce, TellsOfOtherSurroundingsWhereTheMapIsEqual) {
    make({"-p", "7"});
    change("/version", "0.0.1");
    const CommandOutcome outcome = reproduce();
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_THAT(outcome.out, HasSubstr("The report is of version 0.0.1, this is "));
}

TEST_F(Reproduce, NamesAnOptionOfAnotherMeaning) {
    make({"-p", "7"});
    change("/options/start", "spectral");
    CommandOutcome outcome = reproduce();
    EXPECT_EQ(outcome.exit_status, kDifferent);
    EXPECT_THAT(outcome.err, HasSubstr("the option start of the report is \"spectral\""));
    change("/options/start", "random");
    change("/options/warp", 3);
    outcome = reproduce();
    EXPECT_EQ(outcome.exit_status, kDifferent);
    EXPECT_THAT(outcome.err, HasSubstr("has no option warp"));
}

TEST_F(Reproduce, TakesTheOptionsOfTheReportAndNotTheDefaultsOfToday) {
    make({"-p", "7"});
    // As by a version with another default.
    change("/options/exaggeration", 4.0);
    const CommandOutcome outcome = reproduce();
    EXPECT_EQ(outcome.exit_status, kDifferent);
    EXPECT_THAT(outcome.err, HasSubstr("already the first cost is another one"));
}

TEST_F(Reproduce, FindsTheFilesThatWereGiven) {
    std::string places = "name\tx\ty\n";
    for (int n = 0; n < 70; ++n) {
        places += "G" + std::to_string(n) + "\t" + std::to_string(n % 7) + "\t" +
                  std::to_string(n % 9) + "\n";
    }
    const std::string start = directory_.write("start.tsv", places);
    make({"-p", "7", "--start", start});
    EXPECT_EQ(reproduce().exit_status, kSuccess);
    std::filesystem::rename(start, directory_.file("moved.tsv"));
    const CommandOutcome gone = reproduce();
    EXPECT_EQ(gone.exit_status, kBadInput);
    EXPECT_THAT(gone.err, HasSubstr("start.tsv: the file of --start is not there"));
    EXPECT_EQ(reproduce({"--start", directory_.file("moved.tsv")}).exit_status, kSuccess);
    directory_.write("start.tsv", places + "\n");
    const CommandOutcome other = reproduce();
    EXPECT_EQ(other.exit_status, kDifferent);
    EXPECT_THAT(other.err, HasSubstr("has other bytes than that of the report"));
}

TEST_F(Reproduce, ReadsStandardInput) {
    make({"-p", "7"});
    const CommandOutcome outcome =
        run_in_shell("exec \"$0\" --reproduce \"$1\" - < \"$2\"", {report_path(), matrix_path()});
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
}

TEST_F(Reproduce, RefusesOptionsThatTheReportHas) {
    make({"-p", "7"});
    for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{
             {"-p", "9"}, {"--start", "pca"}, {"-o", "elsewhere"}, {"--json", "r.json"}}) {
        const CommandOutcome outcome = reproduce(options);
        EXPECT_EQ(outcome.exit_status, kBadInput) << options[0];
        EXPECT_THAT(outcome.err, HasSubstr("--reproduce")) << options[0];
    }
    EXPECT_THAT(run({"--reproduce", report_path()}).err, HasSubstr("MATRIX is required"));
}

TEST_F(Reproduce, RefusesReportsThatAreNoneOrOfOtherTasks) {
    const std::string path = directory_.write("r.json", "{}");
    const CommandOutcome outcome = run({"--reproduce", path, directory_.write("m.txt", matrix())});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_THAT(outcome.err, HasSubstr("r.json: not the report of a run"));
}

}  // namespace
}  // namespace ovik
