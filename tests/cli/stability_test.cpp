#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/bundled_matrix_test.h"

/// How far a map stays as it is with other seeds and columns, by the real program.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kSuccess;
using testing::HasSubstr;

class Stability : public test::BundledMatrixTest {
  protected:
    Stability() : BundledMatrixTest(200, 30) {}
};

TEST_F(Stability, IsWrittenBesideTheTableWhichStaysAsItIs) {
    ASSERT_EQ(embed({"--no-plots"}).exit_status, kSuccess);
    const std::string table = result("m_tsne_20_0.csv");
    const std::string file = directory_.file("report.json");
    std::string first;
    std::string first_pairs;
    for (const char* const threads : {"1", "2", "5"}) {
        const CommandOutcome outcome =
            embed({"--stability", "2", "--clusters", "--json", file, "-j", threads});
        ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_EQ(result("m_tsne_20_0.csv"), table);
        const std::string stability = result("m_tsne_20_0.stability.tsv");
        const std::string pairs = result("m_tsne_20_0.cluster_pairs.tsv");
        first = first.empty() ? stability : first;
        first_pairs = first_pairs.empty() ? pairs : first_pairs;
        EXPECT_EQ(stability, first) << threads;
        EXPECT_EQ(pairs, first_pairs) << threads;
        EXPECT_THAT(outcome.out, HasSubstr("Stability, 2 draws of the columns: "));
        EXPECT_THAT(outcome.out, HasSubstr(" stay apart\n"));
    }
    EXPECT_THAT(first,
                testing::StartsWith("name\tshared_10_seeds\tspread_seeds\tshared_10_columns\t"
                                    "spread_columns\n"));
    EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 201);
    const json run = json::parse(test::read_file(file))["runs"][0];
    const json stability = run["stability"];
    EXPECT_EQ(stability["seeds"], 2);
    EXPECT_EQ(stability["draws"], 2);
    EXPECT_EQ(stability["spread_columns"].size(), 200U);
    const auto clusters = run["clusters"]["sizes"].size();
    EXPECT_EQ(stability["cluster_pairs"].size(), clusters * (clusters - 1) / 2);
    EXPECT_EQ(static_cast<std::size_t>(std::count(first_pairs.begin(), first_pairs.end(), '\n')),
              stability["cluster_pairs"].size() + 1);
    EXPECT_THAT(result("m_tsne_20_0.html"), HasSubstr("\"shared_10_columns\""));
}

TEST_F(Stability, SaysThatClustersHaveToBeAskedFor) {
    const CommandOutcome outcome = embed({"--stability", "1", "--no-plots", "--seeds", "2"});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("Stability of clusters: not compared without --clusters\n"));
    EXPECT_FALSE(std::filesystem::exists(results_ + "/m_tsne_20_0.cluster_pairs.tsv"));
}

TEST_F(Stability, IsRefusedWhereThereIsNothingToCompare) {
    expectRefusal({"--stability", "0"},
                  "--stability: should be a whole number from 1 to 1000, not 0\n");
    expectRefusal({"--stability", "2", "--metric", "precomputed"},
                  "--stability: draws columns anew, which --metric precomputed has not\n");
    expectRefusal({"--stability", "2", "--neighbours-from", "g.mtx"},
                  "--neighbours-from gives them\nLeave one of them out");
    expectRefusal({"--stability", "2", "--start", matrix_}, "Leave one of them out");
    expectRefusal({"--stability", "2", "--seed", "2147483646"}, "should be at most 2147483645");
    useRows(29);
    expectRefusal({"--stability", "2"},
                  "--stability takes at least 30 rows, and the matrix has 29");
    std::string text = "name\ta\tb\tc\n";
    for (int n = 0; n < 40; ++n) {
        text += "r" + std::to_string(n) + "\t" + std::to_string(n % 7) + "\t" +
                std::to_string(n % 5) + "\t" + std::to_string(n) + "\n";
    }
    matrix_ = directory_.write("narrow.tsv", text);
    expectRefusal({"--stability", "2"}, "of at least 5, and the matrix has 3 columns\n");
}

}  // namespace
}  // namespace ovik
