#include <algorithm>
#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/bundled_matrix_test.h"

/// Clusters of the rows, and what the chart page is told of the map, by the real program.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kSuccess;
using testing::HasSubstr;

class Clusters : public test::BundledMatrixTest {
  protected:
    Clusters() : BundledMatrixTest(300, 5) {}
};

TEST_F(Clusters, AreWrittenShownAndReadBackAndLeaveTheMapAsItIs) {
    ASSERT_EQ(embed({"--no-plots"}).exit_status, kSuccess);
    const std::string table = result("m_tsne_20_0.csv");
    const std::string report = directory_.file("report.json");
    const CommandOutcome outcome = embed({"--clusters", "--json", report, "--seeds", "1"});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_EQ(result("m_tsne_20_0.csv"), table);
    EXPECT_THAT(outcome.out, HasSubstr("-- Clusters: "));
    const std::string file = result("m_tsne_20_0.clusters.tsv");
    EXPECT_THAT(file, testing::StartsWith("name\tCluster\n"));
    const json run = json::parse(test::read_file(report))["runs"][0];
    const std::vector<std::size_t> sizes = run["clusters"]["sizes"];
    EXPECT_EQ(std::accumulate(sizes.begin(), sizes.end(), std::size_t{0}), 300U);
    EXPECT_TRUE(std::is_sorted(sizes.rbegin(), sizes.rend()));
    EXPECT_GT(run["clusters"]["modularity"], 0.2);

    const json data = page();
    const json labels = data["labelColumns"][0];
    EXPECT_EQ(labels["title"], "Cluster");
    EXPECT_EQ(labels["numbers"], json::array());
    EXPECT_EQ(labels["texts"].size(), 300U);
    EXPECT_EQ(data["quality"]["kept"], json::array());

    const std::string saved = directory_.write("clusters.tsv", file);
    ASSERT_EQ(embed({"--labels", saved}).exit_status, kSuccess);
    EXPECT_EQ(page()["labelColumns"][0], labels);
    EXPECT_EQ(page()["quality"], nullptr);
}

TEST_F(Clusters, FollowTheResolutionAndStandBesideOtherLabels) {
    std::string lines;
    for (int row = 0; row < 300; ++row) {
        lines += row % 2 == 0 ? "even\n" : "odd\n";
    }
    ASSERT_EQ(embed({"--clusters",
                     "--clusters-resolution",
                     "4",
                     "--quality",
                     "--labels",
                     directory_.write("labels", lines)})
                  .exit_status,
              kSuccess);
    const json data = page();
    ASSERT_EQ(data["labelColumns"].size(), 2U);
    EXPECT_EQ(data["labelColumns"][0]["texts"][1], "odd");
    EXPECT_EQ(data["labelColumns"][1]["title"], "Cluster");
    EXPECT_EQ(data["quality"]["neighbours"], 30);
    ASSERT_EQ(data["quality"]["kept"].size(), 300U);
    double sum = 0.0;
    for (const json& share : data["quality"]["kept"]) {
        sum += share.get<double>();
    }
    char percent[32];
    std::snprintf(percent, sizeof percent, "%.1f %%", sum / 3.0);
    EXPECT_EQ(data["quality"]["numbers"][2][0], "Neighbours kept, of 30");
    EXPECT_EQ(data["quality"]["numbers"][2][1], percent);
    EXPECT_THAT(data["parameters"].dump(), HasSubstr(" at resolution 4, modularity "));
}

TEST_F(Clusters, TakeAResolutionAboveZeroBesideThemselves) {
    expectRefusal({"--clusters", "--clusters-resolution", "0"},
                  "--clusters-resolution: should be a number");
    expectRefusal({"--clusters-resolution", "2"}, "--clusters");
}

}  // namespace
}  // namespace ovik
