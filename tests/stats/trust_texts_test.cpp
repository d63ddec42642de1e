#include "stats/trust_texts.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::HasSubstr;

std::string value_of(const MapTrust& trust, const std::string& name) {
    for (const TrustNumber& number : trust.numbers) {
        EXPECT_THAT(number.sentence, testing::EndsWith(".")) << number.name;
        if (number.name == name) {
            return number.value;
        }
    }
    return "missing";
}

TEST(MapTrust, SaysNothingOfAFitThatNothingWasMeasuredOf) {
    const MapTrust trust = map_trust({}, {}, nullptr);
    EXPECT_TRUE(trust.numbers.empty());
    EXPECT_TRUE(trust.kept.empty());
    EXPECT_EQ(trust.neighbours, 0U);
}

TEST(MapTrust, SaysWhatTheMapKeeps) {
    FitReport report;
    report.final_cost = 1.25;
    const std::vector<double> kept{0.5, 0.25, 0.0};
    const MapTrust trust =
        map_trust(report, {{10, 0.9, 0.6, {0.1, 0.2, 0.3}}, {30, 0.95, 0.251, kept}}, nullptr);
    EXPECT_EQ(value_of(trust, "Neighbours kept, of 10"), "60.0 %");
    EXPECT_EQ(value_of(trust, "Neighbours kept, of 30"), "25.1 %");
    EXPECT_EQ(value_of(trust, "Trustworthiness, 30 neighbours"), "0.9500");
    EXPECT_EQ(value_of(trust, "Cost"), "1.2500");
    EXPECT_EQ(trust.neighbours, 30U);
    EXPECT_EQ(trust.kept, kept);
}

TEST(MapTrust, HasTheSeedsAndTheClusters) {
    FitReport report;
    report.seeds =
        SeedReport{{{11, 5, 1.5, true}, {12, 5, 1.4, true}}, 1, MapAgreement{0.02, 10, 0.7}};
    const RowClusters clusters{{0, 0, 1}, {2, 1}, 0.4321};
    const MapTrust trust = map_trust(report, {}, &clusters);
    EXPECT_EQ(value_of(trust, "Cost by seed"), "11: 1.5000, 12: 1.4000");
    EXPECT_EQ(value_of(trust, "Procrustes disparity of the seeds"), "0.0200");
    EXPECT_EQ(value_of(trust, "Neighbours shared by the seeds"), "70.0 %");
    EXPECT_EQ(value_of(trust, "Modularity of the clusters"), "0.4321");
    report.seeds->agreement.reset();
    EXPECT_EQ(value_of(map_trust(report, {}, nullptr), "Neighbours shared by the seeds"),
              "missing");
}

TEST(MapTrust, SaysHowManyRowsAreToldFromNoise) {
    const auto rows = std::make_shared<RowReliability>();
    rows->near = 10;
    rows->torn = rows->falsely_near = {{}, {}};
    EXPECT_EQ(value_of(map_trust({}, {{10, 0.9, 0.6, {0.1, 0.2}}}, nullptr, rows),
                       "Told from noise by kept neighbours"),
              "missing");
    rows->columns = {{"p_kept", "", {0.01, 0.04}},
                     {"q_kept", "", {0.02, 0.06}},
                     {"p_misfit", "", {0.5, 0.6}},
                     {"q_misfit", "", {0.7, 0.7}}};
    const MapTrust trust = map_trust({}, {{10, 0.9, 0.6, {0.1, 0.2}}}, nullptr, rows);
    EXPECT_EQ(value_of(trust, "Told from noise by kept neighbours"), "50.0 %");
    EXPECT_EQ(value_of(trust, "Told from noise by misfit"), "0.0 %");
    EXPECT_THAT(trust.numbers[4].sentence, HasSubstr("100.0 % are better than 95 %"));
}

TEST(MapTrust, HasWhatStaysOnOtherMaps) {
    RecordedStability stability;
    stability.seeds = 5;
    stability.draws = 1;
    stability.neighbours = 10;
    stability.columns = {{"shared_10_seeds", "", {0.5, 1.0, 0.0}},
                         {"spread_seeds", "", {0.1, 0.3, 0.2}},
                         {"shared_10_columns", "", {0.25, 0.0, 0.05}},
                         {"spread_columns", "", {0.4, 0.6, 0.5}}};
    stability.has_clusters = true;
    stability.pairs = {{0, 1, 1.0, 1.0, 1.0, true}, {0, 2, 1.0, 1.0, 0.0, false}};
    const MapTrust trust =
        map_trust({}, {}, nullptr, nullptr, std::make_shared<const RecordedStability>(stability));
    EXPECT_EQ(value_of(trust, "Map neighbours that stay, 5 other seeds"), "50.0 %");
    EXPECT_EQ(value_of(trust, "Spread of the places, 1 draw of the columns"), "0.500");
    EXPECT_EQ(value_of(trust, "Pairs of clusters that stay apart"), "1 of 2");
    ASSERT_NE(trust.stability, nullptr);
    EXPECT_THAT(
        stability_lines(stability),
        testing::ElementsAre("Stability, 5 other seeds: 50.0 % of the 10 nearest on the map "
                             "stay, median spread 0.200",
                             "Stability, 1 draw of the columns: 10.0 % of the 10 nearest on "
                             "the map stay, median spread 0.500",
                             "Stability of clusters: 1 of 2 pairs stay apart"));
}

}  // namespace
}  // namespace ovik
