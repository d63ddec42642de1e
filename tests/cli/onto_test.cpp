#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/command_test.h"

/// Placing rows on the map of an earlier run.

namespace ovik {
namespace {

using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;
using testing::Not;

/// Rows of a matrix of three columns, from `begin` to `end` - 1.
std::string rows(int begin, int end) {
    std::string content = "gene\theat\tcold\tsalt\n";
    for (int n = begin; n < end; ++n) {
        char line[100];
        std::snprintf(line,
                      sizeof line,
                      "G%d\t%.6f\t%.6f\t%.6f\n",
                      n,
                      std::sin(n),
                      std::cos(3.0 * n),
                      std::sin(0.1 * n * n));
        content += line;
    }
    return content;
}

class RowsOntoAMap : public test::CommandTest {
  protected:
    /// Makes a map and its model.
    void makeMap(const std::vector<std::string>& options = {}) {
        std::vector<std::string> all = {"--no-plots", "-p", "5", "--model", model_};
        all.insert(all.end(), options.begin(), options.end());
        const auto outcome = run_on(rows(0, 40), all);
        ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr("-- Model: " + model_));
    }

    /// The table of rows placed on the map.
    std::string placed(const std::string& content, const std::vector<std::string>& options = {}) {
        std::vector<std::string> all = {directory_.write("new.tsv", content),
                                        "--onto",
                                        model_,
                                        "--out-dir",
                                        results_,
                                        "--names",
                                        "other",
                                        "--no-plots"};
        all.insert(all.end(), options.begin(), options.end());
        const auto outcome = run(all);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        return result("new_onto.csv");
    }

    std::string model_ = directory_.file("models/map.model");
};

TEST_F(RowsOntoAMap, LieWhereTheyLieAloneForAnyNumberOfThreads) {
    makeMap();
    const std::string all = placed(rows(40, 50));
    for (const char* const threads : {"1", "2", "5"}) {
        EXPECT_EQ(placed(rows(40, 50), {"-j", threads}), all);
    }
    const std::string alone = placed(rows(44, 45));
    EXPECT_THAT(all, HasSubstr(alone.substr(alone.find("\nG44,"))));
    const std::string model = test::read_file(model_);
    makeMap({"-j", "3"});
    EXPECT_EQ(test::read_file(model_), model);
}

TEST_F(RowsOntoAMap, AreWrittenInTheFormsOfAMap) {
    makeMap({"--metric", "cosine"});
    const std::string table =
        placed(rows(40, 42) + "Z\t0\t0\t0\n",
               {"--coordinates", "tsv", "--annotated", "tsv", "--constant-rows", "drop"});
    EXPECT_THAT(table, HasSubstr("\nG41,"));
    EXPECT_THAT(table, Not(HasSubstr("\nZ,")));
    EXPECT_THAT(result("new_onto.tsv"), HasSubstr("\nG41\t"));
    EXPECT_THAT(result("new_onto_annotated.tsv"), HasSubstr("\nG41\t"));
}

TEST_F(RowsOntoAMap, AreNotPlacedByOptionsOfTheMap) {
    makeMap();
    const std::string matrix = directory_.write("new.tsv", rows(40, 50));
    for (const std::vector<std::string>& option : {std::vector<std::string>{"--perplexity", "7"},
                                                   {"--seed", "3"},
                                                   {"--theta", "0"},
                                                   {"--checkpoint", "x"},
                                                   {"--model", "x"},
                                                   {"--gene", "ADE8"},
                                                   {"--dry-run"}}) {
        std::vector<std::string> all = {matrix, "--onto", model_, "--out-dir", results_ + "/no"};
        all.insert(all.end(), option.begin(), option.end());
        const auto outcome = run(all);
        EXPECT_EQ(outcome.exit_status, kBadInput);
        EXPECT_THAT(outcome.err, HasSubstr(option.front() + ": does not go with --onto"));
        EXPECT_FALSE(std::filesystem::exists(results_ + "/no"));
    }
}

TEST_F(RowsOntoAMap, NeedAModelThatMayStandWhereItShould) {
    EXPECT_THAT(refusal(rows(0, 40), {"--model", directory_.write("m.tsv", "gene\ta\n")}),
                HasSubstr("this is not a model, and one would replace it"));
    EXPECT_THAT(refusal(rows(0, 40), {"-p", "5,6", "--model", model_}),
                HasSubstr("--model: is for one perplexity"));
    EXPECT_THAT(refusal(rows(0, 40), {"--checkpoint", model_, "--model", model_}),
                HasSubstr("--model: and --checkpoint cannot be the same file"));
}

}  // namespace
}  // namespace ovik
