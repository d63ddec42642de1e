#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/command_test.h"
#include "tests/support/engine_run.h"
#include "tests/support/running_command.h"

/// Several seeds in one call of the real program.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;

class Seeds : public test::CommandTest {
  protected:
    [[nodiscard]] std::vector<std::string> options(const std::string& out_dir,
                                                   std::vector<std::string> more) const {
        more.insert(
            more.begin(),
            {matrix_, "-n", "y", "-p", "10", "--names", "other", "-o", directory_.file(out_dir)});
        return more;
    }

    [[nodiscard]] std::string file(const std::string& name) const {
        return test::read_file(directory_.file(name));
    }

    std::string matrix_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", 150);
};

TEST_F(Seeds, LeaveTheMapOfTheBestSeedAlone) {
    const std::vector<std::string> manner = {
        "-i", "80", "--no-plots", "--coordinates", "npy", "--stop-lying-iter", "30"};
    std::vector<std::string> repeated = manner;
    repeated.insert(
        repeated.end(),
        {"--seeds", "4", "--seed", "21", "--quality", "--json", directory_.file("r.json")});
    const CommandOutcome outcome = run(options("several", repeated));
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    const json run_report = json::parse(file("r.json"))["runs"][0];
    ASSERT_EQ(run_report["seeds"].size(), 4U);
    const int kept = run_report["kept_seed"];
    for (int seed = 21; seed < 25; ++seed) {
        const json& one = run_report["seeds"][static_cast<std::size_t>(seed - 21)];
        EXPECT_EQ(one["seed"], seed);
        EXPECT_EQ(one["last_iteration"], 80);
        EXPECT_TRUE(one["complete"]);
        EXPECT_GE(one["final_cost"], run_report["final_cost"]);
        std::vector<std::string> alone = manner;
        alone.insert(alone.end(),
                     {"--seed", std::to_string(seed), "--json", directory_.file("one.json")});
        ASSERT_EQ(run(options("one", alone)).exit_status, kSuccess);
        EXPECT_EQ(json::parse(file("one.json"))["runs"][0]["final_cost"], one["final_cost"]);
        EXPECT_EQ(file("one/y_tsne_10_0.npy") == file("several/y_tsne_10_0.npy"), seed == kept);
        EXPECT_EQ(file("one/y_tsne_10_0.csv") == file("several/y_tsne_10_0.csv"), seed == kept);
    }
    EXPECT_THAT(outcome.out, HasSubstr("-- Seed 21: cost without exaggeration "));
    EXPECT_THAT(outcome.out, HasSubstr(", kept\n-- "));
    EXPECT_THAT(outcome.out, HasSubstr("-- Agreement of the maps: Procrustes disparity 0."));
    EXPECT_GT(run_report["agreement"]["disparity"], 0.0);
    EXPECT_LT(run_report["agreement"]["disparity"], 1.0);
    EXPECT_GT(run_report["agreement"]["shared_neighbours"], 10.0 / 149.0);
    EXPECT_EQ(run_report["agreement"]["neighbours"], 10);
}

TEST_F(Seeds, AreTheSameForAnyNumberOfThreads) {
    for (const char* const theta : {"0.5", "0"}) {
        std::string expected;
        for (const char* const threads : {"1", "2", "5"}) {
            ASSERT_EQ(run(options("out", {"-i", "40", "--seeds", "4", "-j", threads, "-t", theta}))
                          .exit_status,
                      kSuccess);
            const std::string results = file("out/y_tsne_10_0.csv") + file("out/y_tsne_10_0.html");
            expected = expected.empty() ? results : expected;
            EXPECT_EQ(results, expected) << threads << " threads";
        }
        EXPECT_THAT(expected, HasSubstr("Agreement of their maps"));
    }
}

TEST_F(Seeds, GoWithSeveralPerplexities) {
    const CommandOutcome outcome = run({matrix_,
                                        "-i",
                                        "20",
                                        "--seeds",
                                        "2",
                                        "-p",
                                        "5,10",
                                        "--no-plots",
                                        "-o",
                                        directory_.file("out"),
                                        "--json",
                                        directory_.file("r")});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    const json report = json::parse(file("r"));
    ASSERT_EQ(report["runs"].size(), 2U);
    EXPECT_EQ(report["runs"][0]["seeds"].size(), 2U);
    EXPECT_EQ(report["runs"][1]["seeds"].size(), 2U);
}

TEST_F(Seeds, InterruptedKeepWhatWasReached) {
    test::RunningCommand command([&] {
        std::vector<std::string> words =
            options("out", {"-i", "1000000000", "--no-plots", "--seeds", "3"});
        words.insert(words.begin(), OVIK_TSNE_COMMAND);
        return words;
    }());
    command.waitFor("at iteration (20/");
    command.typeInterrupt();
    const CommandOutcome outcome = command.finish();
    EXPECT_EQ(outcome.exit_status, 130);
    EXPECT_THAT(outcome.out, HasSubstr("Ended early: of 3 seeds 0 are complete"));
    EXPECT_NE(file("out/y_tsne_10_0.csv"), "");
}

TEST_F(Seeds, AreRefusedWithWhatTheyDoNotGoWith) {
    const auto refusal = [&](std::vector<std::string> more) {
        const CommandOutcome outcome = run(options("none", std::move(more)));
        EXPECT_EQ(outcome.exit_status, kBadInput);
        EXPECT_FALSE(std::filesystem::exists(directory_.file("none")));
        return outcome.err;
    };
    EXPECT_THAT(refusal({"--seeds", "2", "--checkpoint", directory_.file("c")}),
                HasSubstr("--checkpoint and --resume: are for one seed"));
    EXPECT_THAT(refusal({"--seeds", "2", "--start", "pca"}),
                HasSubstr("--seeds: --start pca gives every seed the same start, and so the same "
                          "map\nLeave --seeds out, or give --start random."));
    EXPECT_THAT(refusal({"--seeds", "0"}), HasSubstr("from 1 to 1000, not 0"));
    EXPECT_THAT(refusal({"--seeds", "3", "--seed", "2147483646"}),
                HasSubstr("--seed: should be at most 2147483645, so that 2 more follow it"));
}

TEST_F(Seeds, AreInThePlan) {
    const CommandOutcome outcome = run(options("none", {"--dry-run", "--seeds", "3"}));
    EXPECT_THAT(outcome.out, HasSubstr("-- Seeds: 11 to 13\n"));
}

}  // namespace
}  // namespace ovik
