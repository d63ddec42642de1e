#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/command_test.h"

/// Where the command lets maps start, and principal components in the place of columns.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;
using testing::Not;

constexpr int kRows = 60;

/// @param without  a row that is left out
std::string matrix(int without = -1) {
    std::string content = "gene\ta\tb\tc\td\te";
    for (int n = 0; n < kRows; ++n) {
        if (n == without) {
            continue;
        }
        content += "\nGENE" + std::to_string(n);
        for (int d = 0; d < 5; ++d) {
            content += "\t" + std::to_string((n * 37 + d * 101 + n * d * 7) % 997);
        }
    }
    return content + "\n";
}

class Starts : public test::CommandTest {
  protected:
    /// The table of a run in which all goes well.
    std::string tableOf(const std::string& content, const std::vector<std::string>& options) {
        std::filesystem::remove_all(results_);
        std::vector<std::string> all = {"--no-plots", "--names", "other", "-p", "8"};
        all.insert(all.end(), options.begin(), options.end());
        const CommandOutcome outcome = run_on(content, all);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        out_ = outcome.out;
        return table();
    }

    std::string refusal(const std::vector<std::string>& options) {
        std::filesystem::remove_all(results_);
        const CommandOutcome outcome = run_on(matrix(), options);
        EXPECT_EQ(outcome.exit_status, kBadInput);
        EXPECT_FALSE(std::filesystem::exists(results_));
        return outcome.err;
    }

    std::string out_;
};

TEST_F(Starts, AreTheSameBytesForAnyNumberOfThreads) {
    const std::string start = directory_.write("start.csv", tableOf(matrix(7), {}));
    for (const std::vector<std::string>& options : {std::vector<std::string>{"--start", "pca"},
                                                    {"--start", start},
                                                    {"--start", start, "-t", "0"},
                                                    {"--pca", "3"},
                                                    {"--pca", "3", "--start", "pca", "-d", "3"}}) {
        std::vector<std::string> one = options;
        one.insert(one.end(), {"-j", "1"});
        const std::string expected = tableOf(matrix(), one);
        EXPECT_NE(expected, tableOf(matrix(), {})) << options[1];
        one.back() = "5";
        EXPECT_EQ(tableOf(matrix(), one), expected) << options[1];
    }
}

TEST_F(Starts, TellHowManyRowsHaveAPlace) {
    const std::string earlier = tableOf(matrix(7), {});
    const std::string start = directory_.write("start.csv", earlier + "GONE,1,2,1,Data,\"NULL\"\n");
    tableOf(matrix(), {"--start", start});
    EXPECT_THAT(out_,
                HasSubstr("Start: 59 of 60 rows have their place in " + start +
                          ", the others start among their neighbours; 1 name is of no row: GONE"));
}

TEST_F(Starts, OfOtherUnitsAreWarnedOf) {
    for (const double factor : {1.0, 1e4}) {
        std::string places = "g,x,y\n";
        for (int n = 0; n < kRows; ++n) {
            places += "GENE" + std::to_string(n) + "," + std::to_string(factor * (n % 7)) + "," +
                      std::to_string(factor * (n % 11)) + "\n";
        }
        const std::string path = directory_.write("places.csv", places);
        const CommandOutcome outcome =
            run_on(matrix(), {"--no-plots", "--names", "other", "-p", "8", "--start", path});
        EXPECT_EQ(outcome.exit_status, kSuccess);
        const auto warned = HasSubstr("warning: " + path + ": the places of the start lie up to 5");
        EXPECT_THAT(outcome.err, testing::Conditional(factor > 1.0, warned, Not(warned)));
    }
}

TEST_F(Starts, AreRefusedBeforeTheRun) {
    EXPECT_THAT(refusal({"--start", "pcs"}), HasSubstr("--start"));
    const std::string other = directory_.write("other.csv", "g,x,y\nOTHER,1,2\n");
    EXPECT_THAT(
        refusal({"--start", other}),
        HasSubstr(other + ": none of its names (OTHER, ...) is that of a row (GENE0, ...)"));
    EXPECT_THAT(refusal({"--start", other, "--dry-run"}), HasSubstr("none of its names"));
    EXPECT_THAT(refusal({"--start", "pca", "-d", "6"}),
                HasSubstr("--start pca needs a component for each of the 6 dimensions of the map, "
                          "and the matrix has 60 rows and 5 columns"));
    EXPECT_THAT(refusal({"--start", "pca", "-d", "3", "--pca", "2"}),
                HasSubstr("Give more than --pca 2, or take the random start."));
    EXPECT_THAT(refusal({"--pca", "5"}), HasSubstr("reduce nothing"));
}

TEST_F(Starts, OfAnotherFileAreNotResumed) {
    const std::string start = directory_.write("start.csv", tableOf(matrix(), {}));
    const std::string checkpoint = directory_.file("checkpoint");
    tableOf(matrix(), {"--start", start, "--checkpoint", checkpoint});
    tableOf(matrix(), {"--start", start, "--resume", checkpoint});
    const std::string other = directory_.write("other.csv", tableOf(matrix(), {"--seed", "3"}));
    const CommandOutcome outcome =
        run_on(matrix(), {"--no-plots", "-p", "8", "--start", other, "--resume", checkpoint});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_THAT(outcome.err, HasSubstr("start"));
}

TEST_F(Starts, ComponentsSayWhatTheyKeep) {
    const std::string report = directory_.file("report.json");
    tableOf(matrix(), {"--pca", "2", "--json", report});
    EXPECT_THAT(out_, HasSubstr("2 principal components stand for 5 columns, with "));
    const nlohmann::json only = nlohmann::json::parse(test::read_file(report))["runs"].front();
    EXPECT_GT(only["variance_kept"], 0.3);
    EXPECT_LT(only["variance_kept"], 1.0);
    tableOf(matrix(), {"--json", report});
    EXPECT_TRUE(
        nlohmann::json::parse(test::read_file(report))["runs"].front()["variance_kept"].is_null());
    EXPECT_THAT(out_, Not(HasSubstr("principal components")));
}

TEST_F(Starts, TellOfTheSampleTheyBeginWith) {
    std::string content = "gene\ta\tb\tc";
    for (int n = 0; n < 2000; ++n) {
        content += "\nGENE" + std::to_string(n);
        for (int d = 0; d < 3; ++d) {
            content += "\t" + std::to_string((n * 3701 + d * 1013 + n * d * 77) % 9973);
        }
    }
    const std::string report = directory_.file("sample.json");
    tableOf(content + "\n",
            {"--start", "sample", "--neighbour-search", "approximate", "--json", report});
    const std::size_t similarities = out_.find("Got sparsity");
    const std::size_t sample = out_.find("-- Embedding a sample of the rows");
    const std::size_t end = out_.find(
        "-- The map of 1000 rows is the start of all; approximate neighbours among them: ");
    EXPECT_LT(similarities, sample);
    EXPECT_LT(sample, end);
    EXPECT_LT(end, out_.find("Got error of"));
    const auto run = nlohmann::json::parse(test::read_file(report))["runs"][0];
    EXPECT_GT(run["seconds"]["sample"], 0.0);
    EXPECT_GT(run["sample_neighbour_recall"], 0.9);
}

}  // namespace
}  // namespace ovik
