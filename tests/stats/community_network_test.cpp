#include "stats/community_network.h"

#include <map>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/weighted_graph.h"

namespace ovik {
namespace {

std::map<std::uint32_t, double> edges_of(const CommunityNetwork& network, std::size_t node) {
    std::map<std::uint32_t, double> edges;
    for (const auto& [neighbour, weight] : network.edges(node)) {
        EXPECT_TRUE(edges.emplace(neighbour, weight).second);
    }
    return edges;
}

TEST(CommunityNetwork, HasEdgesToOthersAndCountsLoopsByStrength) {
    const test::Weights weights{{0.5, 2.0, 0.0}, {2.0, 0.0, 1.0}, {0.0, 1.0, 0.0}};
    const CommunityNetwork network(test::sparse_rows(weights).view(), 3);
    ASSERT_EQ(network.nodeCount(), 3U);
    EXPECT_EQ(edges_of(network, 0), (std::map<std::uint32_t, double>{{1, 2.0}}));
    EXPECT_EQ(edges_of(network, 1), (std::map<std::uint32_t, double>{{0, 2.0}, {2, 1.0}}));
    EXPECT_EQ(network.strength(0), 2.5);
    EXPECT_EQ(network.strength(1), 3.0);
    EXPECT_EQ(network.totalStrength(), 6.5);
}

TEST(CommunityNetwork, LeavesOutEdgesWithoutWeight) {
    const std::vector<unsigned int> starts{0, 1, 2};
    const std::vector<unsigned int> columns{1, 0};
    const std::vector<double> values{0.0, 0.0};
    const CommunityNetwork network({starts.data(), columns.data(), values.data()}, 2);
    EXPECT_TRUE(network.edges(0).empty());
    EXPECT_EQ(network.totalStrength(), 0.0);
}

TEST(CommunityNetwork, OfGroupsSumsWhatLeadsFromOneToAnother) {
    const test::Weights weights{
        {0.0, 4.0, 1.0, 0.0}, {4.0, 0.0, 2.0, 0.0}, {1.0, 2.0, 0.0, 8.0}, {0.0, 0.0, 8.0, 0.0}};
    const CommunityNetwork network(test::sparse_rows(weights).view(), 4);
    const std::vector<std::uint32_t> groups{1, 1, 0, 2};
    const CommunityNetwork of_groups = network.aggregated(groups, 3);
    ASSERT_EQ(of_groups.nodeCount(), 3U);
    EXPECT_EQ(edges_of(of_groups, 0), (std::map<std::uint32_t, double>{{1, 3.0}, {2, 8.0}}));
    EXPECT_EQ(edges_of(of_groups, 1), (std::map<std::uint32_t, double>{{0, 3.0}}));
    EXPECT_EQ(of_groups.strength(1), 11.0);
    EXPECT_EQ(of_groups.totalStrength(), network.totalStrength());
}

TEST(CommunityWeights, SumByCommunityAndForget) {
    CommunityWeights weights(5);
    weights.add(3, 1.0);
    weights.add(1, 0.5);
    weights.add(3, 2.0);
    EXPECT_EQ(weights.met(), (std::vector<std::uint32_t>{3, 1}));
    EXPECT_EQ(weights.of(3), 3.0);
    EXPECT_EQ(weights.of(0), 0.0);
    weights.clear();
    EXPECT_TRUE(weights.met().empty());
    EXPECT_EQ(weights.of(3), 0.0);
}

}  // namespace
}  // namespace ovik
