#include "stats/modularity.h"

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/support/weighted_graph.h"

namespace ovik {
namespace {

TEST(Modularity, IsThatOfTwoTrianglesWithABridge) {
    test::Weights weights(6, std::vector<double>(6));
    const std::pair<std::size_t, std::size_t> kEdges[] = {
        {0, 1}, {0, 2}, {1, 2}, {3, 4}, {3, 5}, {4, 5}, {2, 3}};
    for (const auto& [i, j] : kEdges) {
        weights[i][j] = weights[j][i] = 1.0;
    }
    const std::vector<std::uint32_t> triangles{0, 0, 0, 1, 1, 1};
    // 6 of 7 edges within, and each triangle has half of the ends.
    EXPECT_DOUBLE_EQ(modularity(test::sparse_rows(weights).view(), triangles), 6.0 / 7.0 - 0.5);
    EXPECT_DOUBLE_EQ(modularity(test::sparse_rows(weights).view(), triangles, 2.0),
                     6.0 / 7.0 - 1.0);
}

TEST(Modularity, IsZeroWithoutEdges) {
    const std::vector<std::uint32_t> communities{0, 1, 1};
    EXPECT_EQ(modularity({std::vector<unsigned int>(4).data(), nullptr, nullptr}, communities),
              0.0);
}

RC_GTEST_PROP(Modularity, IsTheSumOverAllPairs, (unsigned int seed)) {
    const std::size_t N = *rc::gen::inRange<std::size_t>(2, 30);
    const test::Weights weights = test::planted_graph(N, 3, 0.8, 0.3, seed);
    const auto communities = *rc::gen::container<std::vector<std::uint32_t>>(
        N, rc::gen::inRange<std::uint32_t>(0, static_cast<std::uint32_t>(N)));
    const test::SparseRows rows = test::sparse_rows(weights);
    RC_PRE(!rows.val_P.empty());
    for (const double resolution : {0.5, 1.0, 3.0}) {
        const double expected = test::plain_modularity(weights, communities, resolution);
        RC_ASSERT(std::abs(modularity(rows.view(), communities, resolution) - expected) < 1e-12);
    }
}

}  // namespace
}  // namespace ovik
