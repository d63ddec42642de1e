#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/bundled_matrix_test.h"

/// How far each row can be trusted, by the real program.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kSuccess;
using testing::HasSubstr;

class Reliability : public test::BundledMatrixTest {
  protected:
    Reliability() : BundledMatrixTest(200, 20) {}
};

TEST_F(Reliability, IsWrittenBesideTheTableWhichStaysAsItIs) {
    ASSERT_EQ(embed({"--no-plots"}).exit_status, kSuccess);
    const std::string table = result("m_tsne_20_0.csv");
    const std::string file = directory_.file("report.json");
    std::string first;
    for (const char* const threads : {"1", "2", "5"}) {
        const CommandOutcome outcome = embed({"--reliability", "--json", file, "-j", threads});
        ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_EQ(result("m_tsne_20_0.csv"), table);
        const std::string reliability = result("m_tsne_20_0.reliability.tsv");
        first = first.empty() ? reliability : first;
        EXPECT_EQ(reliability, first) << threads;
    }
    EXPECT_THAT(first,
                testing::StartsWith("name\tkept_10\tkept_30\ttrustworthiness_10\t"
                                    "trustworthiness_30\tcost\tmisfit\tfalse_neighbours\t"
                                    "torn_neighbours\n"));
    EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 201);
    const json run = json::parse(test::read_file(file))["runs"][0];
    const json rows = run["reliability"];
    const std::vector<double> costs = rows["cost"];
    double sum = 0.0;
    for (const double cost : costs) {
        sum += cost;
    }
    EXPECT_NEAR(sum, run["final_cost"].get<double>(), 1e-10);
    double kept = 0.0;
    for (const double share : rows["kept_30"]) {
        kept += std::round(30.0 * share);
    }
    EXPECT_DOUBLE_EQ(kept / (30.0 * 200.0), run["quality"][1]["preservation"].get<double>());
    EXPECT_EQ(rows["false_neighbours"].size(), 200U);
    EXPECT_EQ(rows["near"], 10);
    EXPECT_EQ(rows["far"], 30);
}

TEST_F(Reliability, IsNotAskedOfAFewRows) {
    useRows(29);
    expectRefusal({"--reliability"}, "at least 30 rows, and the matrix has 29 rows\n");
}

TEST_F(Reliability, ComparesTheRowsWithNoise) {
    const std::string file = directory_.file("report.json");
    ASSERT_EQ(embed({"--no-plots"}).exit_status, kSuccess);
    const std::string table = result("m_tsne_20_0.csv");
    std::string first;
    for (const char* const threads : {"1", "2", "5"}) {
        const CommandOutcome outcome =
            embed({"--against-noise", "3", "--no-plots", "--json", file, "-j", threads});
        ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr("-- Embedding 3 matrices of shuffled values\n"));
        EXPECT_THAT(outcome.out, HasSubstr("-- By kept neighbours: "));
        EXPECT_THAT(outcome.out, HasSubstr("-- By misfit: "));
        EXPECT_EQ(result("m_tsne_20_0.csv"), table);
        const std::string reliability = result("m_tsne_20_0.reliability.tsv");
        first = first.empty() ? reliability : first;
        EXPECT_EQ(reliability, first) << threads;
    }
    EXPECT_THAT(first,
                HasSubstr("\tcost\tmisfit\tconcentration\tp_kept\tq_kept\tp_misfit\tq_misfit\t"
                          "false_neighbours"));
    const json run = json::parse(test::read_file(file))["runs"][0];
    EXPECT_EQ(run["noise"]["matrices"], 3);
    EXPECT_EQ(run["noise"]["neighbours"], 30);
    EXPECT_EQ(run["noise"]["groups"], 3);
    EXPECT_EQ(run["noise"]["least_chance"], 1.0 / 201.0);
    std::size_t better = 0;
    for (const double chance : run["reliability"]["p_kept"]) {
        EXPECT_GE(chance, 1.0 / 201.0);
        better += chance <= 0.05 ? 1 : 0;
    }
    EXPECT_DOUBLE_EQ(run["noise"]["kept"]["better"].get<double>(),
                     static_cast<double>(better) / 200.0);
}

TEST_F(Reliability, OfNoiseGoesWithNothingThatCannotBeShuffled) {
    const std::vector<std::vector<std::string>> kRefused = {
        {"--against-noise", "0"},
        {"--against-noise", "-1"},
        {"--against-noise", "1001"},
        {"--against-noise", "2", "--metric", "precomputed"},
        {"--against-noise", "2", "--neighbours-from", directory_.write("graph.mtx", "")},
        {"--against-noise", "2", "--start", directory_.write("start.tsv", "name\tx\ty\n")},
        {"--against-noise", "2", "--seeds", "2"},
        {"--against-noise", "2", "--onto", directory_.file("m")},
    };
    for (const std::vector<std::string>& options : kRefused) {
        expectRefusal(options, "against-noise");
    }
    useRows(29);
    expectRefusal({"--against-noise", "2"}, "--against-noise takes at least 30 rows");
    useRows(40);
    expectRefusal({"--against-noise", "2", "-p", "40"}, "perplexity");
}

}  // namespace
}  // namespace ovik
