#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/command_test.h"
#include "tests/support/engine_run.h"

/// Choices of the fit, and presets, in the real program.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;

class Choices : public test::CommandTest {
  protected:
    /// Runs on genes of a real matrix, with the results in a directory of their own.
    CommandOutcome embed(const std::string& out_dir, std::vector<std::string> options) {
        options.insert(options.begin(),
                       {matrix_, "-n", "y", "-i", "30", "-o", directory_.file(out_dir)});
        return run(options);
    }

    /// What a run is refused with, before anything is written.
    std::string refusal_of(const std::vector<std::string>& options) {
        const CommandOutcome outcome = embed("refused", options);
        EXPECT_EQ(outcome.exit_status, kBadInput);
        EXPECT_FALSE(std::filesystem::exists(directory_.file("refused")));
        return outcome.err;
    }

    /// Compares the files of two directories but for logs.
    void expectSameFiles(const std::string& one, const std::string& other, std::size_t count) {
        std::size_t compared = 0;
        for (const auto& entry : std::filesystem::directory_iterator(directory_.file(one))) {
            const std::string name = entry.path().filename().string();
            if (entry.path().extension() != ".log") {
                EXPECT_EQ(test::read_file(entry.path().string()), file(other + "/" + name)) << name;
                ++compared;
            }
        }
        EXPECT_EQ(compared, count);
    }

    [[nodiscard]] std::string file(const std::string& name) const {
        return test::read_file(directory_.file(name));
    }

    std::string matrix_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", 120);
};

TEST_F(Choices, OfTheClassicalRunAreTheDefaults) {
    ASSERT_EQ(embed("plain", {"--coordinates", "npy"}).exit_status, kSuccess);
    for (const std::vector<std::string>& options : {std::vector<std::string>{"--preset", "classic"},
                                                    std::vector<std::string>{"--metric",
                                                                             "euclidean",
                                                                             "--schedule",
                                                                             "classic",
                                                                             "--start",
                                                                             "random",
                                                                             "--affinity",
                                                                             "perplexity",
                                                                             "--pca",
                                                                             "0",
                                                                             "--stop-when",
                                                                             "0",
                                                                             "--learning-rate",
                                                                             "200"}}) {
        std::vector<std::string> all = options;
        all.insert(all.end(), {"--coordinates", "npy"});
        ASSERT_EQ(embed("chosen", all).exit_status, kSuccess);
        expectSameFiles("plain", "chosen", 6);
    }
}

TEST_F(Choices, OfAPresetAreToldAsOptions) {
    const std::string report = directory_.file("refined.json");
    ASSERT_EQ(embed("refined", {"--preset", "refined", "--json", report}).exit_status, kSuccess);
    const json options = json::parse(test::read_file(report))["options"];
    EXPECT_EQ(options["schedule"], "annealed");
    EXPECT_EQ(options["metric"], "euclidean");
    EXPECT_TRUE(options["stop_lying_iter"].is_null());
    EXPECT_TRUE(options["hold_iter"].is_number());
    const std::string page = file("refined/y_tsne_20_0.html");
    EXPECT_THAT(page, HasSubstr("Schedule"));
    EXPECT_THAT(page, HasSubstr("annealed"));
}

TEST_F(Choices, GivenWithAPresetAreThoseGivenByThemselves) {
    // All that the preset stands for is given otherwise.
    const std::vector<std::string> classical = {"--schedule",
                                                "classic",
                                                "--start",
                                                "random",
                                                "--learning-rate",
                                                "200",
                                                "--exaggeration",
                                                "12",
                                                "--preset",
                                                "refined"};
    ASSERT_EQ(embed("given", classical).exit_status, kSuccess);
    ASSERT_EQ(embed("plain", {}).exit_status, kSuccess);
    EXPECT_EQ(file("given/y_tsne_20_0.csv"), file("plain/y_tsne_20_0.csv"));
}

TEST_F(Choices, ThatDoNotFitAreRefusedBeforeTheRun) {
    EXPECT_THAT(refusal_of({"--hold-iter", "5"}),
                HasSubstr("--hold-iter has no effect beside --schedule classic\nLeave --hold-iter "
                          "out, or give --schedule annealed.\n"));
    EXPECT_THAT(refusal_of({"-p", "5,10", "--affinity", "uniform"}),
                HasSubstr("--perplexity has no effect beside --affinity uniform\n"));
    EXPECT_THAT(refusal_of({"--affinity", "uniform", "--neighbours", "119"}),
                HasSubstr("--neighbours 119: a row has 119 others"));
    EXPECT_THAT(refusal_of({"--multiscale", "10,119"}), HasSubstr("a row has 119 others"));
    EXPECT_THAT(refusal_of({"--pca", "36"}), HasSubstr("120 rows and 36 columns"));
    EXPECT_THAT(refusal_of({"--stop-when", "1"}), HasSubstr("at least 0, below 1, not 1"));
    EXPECT_THAT(refusal_of({"--start", directory_.file("none")}), HasSubstr("no such file"));
    EXPECT_THAT(refusal_of({"--learning-rate", "0"}), HasSubstr("above 0, at most 1e9, or auto"));
}

TEST_F(Choices, WithoutAPerplexityAreCalledByWhatTheyHave) {
    const CommandOutcome uniform = embed("uniform", {"--affinity", "uniform", "--no-plots"});
    EXPECT_EQ(uniform.exit_status, kSuccess);
    EXPECT_THAT(uniform.out,
                HasSubstr("-- Launching t-SNE with uniform affinities of 15 neighbours and theta "
                          "= 0.50\n"));
    EXPECT_NE(file("uniform/y_tsne_uniform_15.csv"), "");
    EXPECT_THAT(file("uniform/y.log"), HasSubstr("(uniform affinities of 15 neighbours).\n"));
    const std::string report = directory_.file("several.json");
    const CommandOutcome several =
        embed("several", {"--multiscale", "10,30", "--no-plots", "--json", report});
    EXPECT_THAT(several.out, HasSubstr("-- Launching t-SNE with perplexities = 10, 30 and theta"));
    EXPECT_NE(file("several/y_tsne_10_0_30_0.csv"), "");
    const json written = json::parse(test::read_file(report));
    EXPECT_TRUE(written["runs"][0]["perplexity"].is_null());
    EXPECT_EQ(written["options"]["multiscale"], (json{10.0, 30.0}));
    // The page to compare runs takes such reports.
    EXPECT_EQ(run({"--collect", report, "-o", directory_.file("pages")}).exit_status, kSuccess);
    EXPECT_THAT(file("pages/collected_tsne_comparison.html"), HasSubstr("Perplexities = 10, 30"));
}

TEST_F(Choices, AnApproximateSearchTellsWhatItFound) {
    const std::string report = directory_.file("near.json");
    const CommandOutcome near =
        embed("near", {"--neighbour-search", "approximate", "--json", report});
    EXPECT_EQ(near.exit_status, kSuccess);
    // One leaf of a tree holds so few rows.
    EXPECT_THAT(near.out,
                HasSubstr("-- Approximate neighbours: 100.0 % of the nearest, of 120 rows"));
    const json written = json::parse(test::read_file(report));
    EXPECT_EQ(written["options"]["neighbour_search"], "approximate");
    EXPECT_EQ(written["runs"][0]["neighbour_recall"], 1.0);
    EXPECT_THAT(refusal_of({"--neighbour-search", "approximate", "--theta", "0"}),
                HasSubstr("--neighbour-search has no effect beside --theta 0"));
}

TEST_F(Choices, ArePlannedAsTheyAre) {
    EXPECT_THAT(embed("none", {"--affinity", "uniform", "--dry-run"}).out,
                HasSubstr("(theta = 0.50), uniform affinities of 15 neighbours, 2 dimensions"));
    EXPECT_THAT(embed("none", {"--dry-run", "-p", "5,10"}).out,
                HasSubstr("(theta = 0.50), perplexity 5.00, 10.00, 2 dimensions"));
}

TEST_F(Choices, DecideWhichCheckpointIsOfARun) {
    const std::string classical = directory_.file("classical.ckpt");
    ASSERT_EQ(embed("a", {"--checkpoint", classical, "--no-plots"}).exit_status, kSuccess);
    // What ends the fit alone may be another.
    EXPECT_EQ(run({matrix_,
                   "-i",
                   "400",
                   "--resume",
                   classical,
                   "--stop-when",
                   "0.5",
                   "--no-plots",
                   "-o",
                   directory_.file("b")})
                  .exit_status,
              kSuccess);
    EXPECT_THAT(
        refusal_of({"--resume", classical, "--metric", "pearson", "--learning-rate", "auto"}),
        HasSubstr("this checkpoint is not of this run\n"
                  "  learning_rate: 200 in the checkpoint, auto now\n"
                  "  metric: euclidean in the checkpoint, pearson now\n"
                  "Give the matrix"));
    const std::string chosen = directory_.file("chosen.ckpt");
    const std::vector<std::string> options = {"--multiscale", "10,30", "--no-plots"};
    std::vector<std::string> first = options;
    first.insert(first.end(), {"--checkpoint", chosen});
    ASSERT_EQ(embed("c", first).exit_status, kSuccess);
    EXPECT_THAT(refusal_of({"--resume", chosen}),
                HasSubstr("  multiscale: 10,30 in the checkpoint, none now\nGive"));
    std::vector<std::string> further = options;
    further.insert(further.end(), {"--resume", chosen});
    EXPECT_EQ(embed("d", further).exit_status, kSuccess);
}

}  // namespace
}  // namespace ovik
