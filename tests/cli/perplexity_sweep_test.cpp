#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/command_test.h"
#include "tests/support/engine_run.h"

/// Several perplexities in one call of the real program.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kFailedRun;
using test::kSuccess;
using testing::HasSubstr;

class Sweep : public test::CommandTest {
  protected:
    /// Runs on genes of a real matrix, among them equal rows.
    CommandOutcome sweep(const std::string& perplexities,
                         const std::string& out_dir,
                         std::vector<std::string> options = {}) {
        options.insert(
            options.begin(),
            {matrix_, "-n", "y", "-i", "60", "-p", perplexities, "-o", directory_.file(out_dir)});
        return run(options);
    }

    [[nodiscard]] std::string file(const std::string& name) const {
        return test::read_file(directory_.file(name));
    }

    std::string matrix_ = [this] {
        const std::string path = test::first_rows(directory_, "brauer2008_chemostat.tsv", 300);
        std::string content = test::read_file(path);
        const std::size_t second = content.find('\n') + 1;
        const std::size_t third = content.find('\n', second) + 1;
        return directory_.write("genes.tsv", content + content.substr(second, third - second));
    }();
};

TEST_F(Sweep, LeavesTheFilesOfSeparateRuns) {
    for (const char* const theta : {"0.5", "0"}) {
        const std::vector<std::string> options = {"-t", theta, "--coordinates", "npy,tsv"};
        ASSERT_EQ(sweep("30,5,12.5", "all", options).exit_status, kSuccess);
        for (const char* const perplexity : {"30", "5", "12.5"}) {
            ASSERT_EQ(sweep(perplexity, "one", options).exit_status, kSuccess);
        }
        std::size_t compared = 0;
        for (const auto& entry : std::filesystem::directory_iterator(directory_.file("one"))) {
            const std::string name = entry.path().filename().string();
            if (entry.path().extension() != ".log") {
                EXPECT_EQ(file("all/" + name), file("one/" + name)) << name << " theta " << theta;
                ++compared;
            }
        }
        EXPECT_EQ(compared, 3U * 7U);
    }
}

TEST_F(Sweep, AppendsARecordForEachRun) {
    ASSERT_EQ(sweep("5,30", "all", {"--no-plots"}).exit_status, kSuccess);
    const std::string log = file("all/y.log");
    EXPECT_THAT(log, HasSubstr("tsne_5_0"));
    EXPECT_THAT(log, HasSubstr("tsne_30_0"));
}

TEST_F(Sweep, LeavesAPageThatLeadsToItsRuns) {
    const CommandOutcome outcome = sweep("30,5", "all", {"--title", "Yeast & co", "--quality"});
    const std::string path = directory_.file("all") + "/y_tsne_comparison.html";
    EXPECT_THAT(outcome.out, HasSubstr("-- Comparison: " + path + "\n"));
    const std::string page = test::read_file(path);
    EXPECT_THAT(page, HasSubstr("<h1>Yeast &amp; co</h1>"));
    EXPECT_THAT(page, HasSubstr("<dd>301 rows, 36 columns</dd>"));
    EXPECT_THAT(page, HasSubstr("<th scope=\"col\">Trustworthiness, nearest 10</th>"));
    EXPECT_THAT(page, HasSubstr("as near as it can to that of &quot;Perplexity 30&quot;"));
    for (const char* const name : {"y_tsne_30_0", "y_tsne_5_0"}) {
        for (const char* const extension : {".csv", ".html", ".png", ".svg", ".gp"}) {
            EXPECT_THAT(page, HasSubstr(std::string("href=\"./") + name + extension + "\""));
        }
        EXPECT_THAT(page, HasSubstr(std::string("<img src=\"./") + name + ".png\""));
    }
}

TEST_F(Sweep, RefusesWhatCannotBeOneBeforeItWritesAnything) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> kCases = {
        {{"-p", "5,x"}, "should be a number at least 1, at most 1e9, not x"},
        {{"-p", "5,"}, "should be a number at least 1, at most 1e9, not "},
        {{"-p", "5,10,5.0"}, "5.0 stands there twice"},
        {{"-p", "5,400"}, "a row has 300 others"},
        {{"-p", "5.01,5.02"}, "two results would be called y_tsne_5_0.csv"},
        {{"-p", "5,10", "--checkpoint", directory_.file("c")}, "are for one perplexity"},
        {{"-p", "5", "--coordinates", "csv"}, "should be tsv, npy or tsv,npy, not csv"}};
    for (const auto& [options, message] : kCases) {
        std::vector<std::string> arguments = {matrix_, "-n", "y", "-o", results_};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const CommandOutcome outcome = run(arguments);
        EXPECT_EQ(outcome.exit_status, kBadInput) << message;
        EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_FALSE(std::filesystem::exists(results_));
    }
}

TEST_F(Sweep, KeepsWhatCouldBeWritten) {
    std::filesystem::create_directories(directory_.file("all/y_tsne_5_0.csv"));
    std::filesystem::create_directories(directory_.file("all/y_tsne_comparison.html"));
    const CommandOutcome outcome = sweep("5,30", "all");
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_THAT(outcome.err,
                HasSubstr("Comparison could not be written: " + directory_.file("all") +
                          "/y_tsne_comparison.html (Is a directory)"));
    EXPECT_NE(file("all/y_tsne_30_0.csv"), "");
}

TEST_F(Sweep, IsToldByADryRun) {
    const CommandOutcome outcome =
        sweep("5,30", "all", {"--dry-run", "--plot-cost", "--coordinates", "tsv"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    for (const char* const name : {"y.log",
                                   "y_tsne_5_0.csv",
                                   "y_tsne_30_0.html",
                                   "y_tsne_30_0.tsv",
                                   "y_tsne_5_0_cost.png",
                                   "y_tsne_comparison.html"}) {
        EXPECT_THAT(outcome.out, HasSubstr(directory_.file("all") + "/" + name + "\n"));
    }
    EXPECT_THAT(outcome.out, HasSubstr("perplexity 5.00, 30.00, 2 dimensions"));
}

}  // namespace
}  // namespace ovik
