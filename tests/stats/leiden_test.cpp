#include "stats/leiden.h"

#include <algorithm>
#include <set>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "stats/modularity.h"

#include "tests/support/weighted_graph.h"

namespace ovik {
namespace {

using Communities = std::vector<std::uint32_t>;

Communities communities_of(const test::Weights& weights, double resolution = 1.0) {
    return leiden_communities(test::sparse_rows(weights).view(), weights.size(), resolution);
}

std::size_t count_of(const Communities& communities) {
    return std::set(communities.begin(), communities.end()).size();
}

TEST(LeidenCommunities, FindPlantedGroups) {
    for (const unsigned int seed : {1U, 2U, 3U}) {
        const Communities found = communities_of(test::planted_graph(200, 5, 0.4, 0.05, seed));
        ASSERT_EQ(count_of(found), 5U) << seed;
        for (std::size_t n = 0; n < 200; ++n) {
            EXPECT_EQ(found[n], found[n % 5]) << seed << " " << n;
        }
    }
}

TEST(LeidenCommunities, OfARingOfCliquesAreTheCliques) {
    constexpr std::size_t kCliques = 12;
    constexpr std::size_t kSize = 5;
    test::Weights weights(kCliques * kSize, std::vector<double>(kCliques * kSize));
    for (std::size_t i = 0; i < weights.size(); ++i) {
        for (std::size_t j = 0; j < weights.size(); ++j) {
            weights[i][j] = i != j && i / kSize == j / kSize ? 1.0 : 0.0;
        }
    }
    for (std::size_t clique = 0; clique < kCliques; ++clique) {
        const std::size_t i = clique * kSize;
        const std::size_t j = (i + kSize) % weights.size();
        weights[i][j] = weights[j][i] = 1.0;
    }
    const Communities found = communities_of(weights);
    EXPECT_EQ(count_of(found), kCliques);
    for (std::size_t n = 0; n < weights.size(); ++n) {
        // Equally large ones are numbered by their first members.
        EXPECT_EQ(found[n], n / kSize);
    }
}

TEST(LeidenCommunities, AreNumberedFromTheLargest) {
    test::Weights weights(9, std::vector<double>(9));
    const auto connect = [&weights](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i <= last; ++i) {
            for (std::size_t j = first; j <= last; ++j) {
                weights[i][j] = i == j ? 0.0 : 1.0;
            }
        }
    };
    connect(0, 1);
    connect(2, 5);
    connect(6, 7);
    // The last row has no neighbours at all.
    EXPECT_EQ(communities_of(weights), (Communities{1, 1, 0, 0, 0, 0, 2, 2, 3}));
}

TEST(LeidenCommunities, OfNoEdgesAreSingleRows) {
    EXPECT_EQ(communities_of(test::Weights(3, std::vector<double>(3))), (Communities{0, 1, 2}));
    EXPECT_EQ(communities_of({}), Communities{});
}

TEST(LeidenCommunities, BecomeMoreWithTheResolution) {
    const test::Weights weights = test::planted_graph(120, 4, 0.5, 0.1, 7);
    std::size_t before = 0;
    for (const double resolution : {0.1, 1.0, 2.0, 1000.0}) {
        const std::size_t count = count_of(communities_of(weights, resolution));
        EXPECT_GE(count, before) << resolution;
        before = count;
    }
    EXPECT_EQ(count_of(communities_of(weights, 0.1)), 1U);
    EXPECT_EQ(before, weights.size());
}

RC_GTEST_PROP(LeidenCommunities, AreConnectedAndGainByNoMoveAndNoUnion, (unsigned int seed)) {
    const std::size_t N = *rc::gen::inRange<std::size_t>(2, 40);
    const double between = *rc::gen::element(0.02, 0.1, 0.4);
    const double resolution = *rc::gen::element(0.5, 1.0, 2.0);
    const test::Weights weights = test::planted_graph(N, 4, 0.6, between, seed);
    const test::SparseRows rows = test::sparse_rows(weights);
    RC_PRE(!rows.val_P.empty());
    const Communities found = communities_of(weights, resolution);
    const auto quality = [&](const Communities& communities) {
        return test::plain_modularity(weights, communities, resolution);
    };
    const double reached = quality(found);
    RC_ASSERT(std::abs(modularity(rows.view(), found, resolution) - reached) < 1e-12);
    const auto count = static_cast<std::uint32_t>(count_of(found));
    for (std::uint32_t c = 0; c < count; ++c) {
        RC_ASSERT(test::is_connected(weights, found, c));
        for (std::uint32_t other = 0; other < c; ++other) {
            Communities joined = found;
            std::replace(joined.begin(), joined.end(), c, other);
            RC_ASSERT(quality(joined) <= reached + 1e-9);
        }
    }
    for (std::size_t n = 0; n < N; ++n) {
        for (std::uint32_t c = 0; c <= count; ++c) {
            Communities moved = found;
            moved[n] = c;
            RC_ASSERT(quality(moved) <= reached + 1e-9);
        }
    }
}

}  // namespace
}  // namespace ovik
