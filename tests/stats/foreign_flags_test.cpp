#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "neighbours/euclidean_distance.h"
#include "neighbours/vptree.h"
#include "stats/sparse_affinities.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"

/// A caller who uses the tree himself, compiled with fused multiply-add: the engine is to keep its
/// own arithmetic when both are linked together.

namespace ovik {
namespace {

constexpr std::size_t kCount = 200;
constexpr std::size_t kDims = 79;

TEST(ForeignFlags, DoNotChangeTheEngine) {
    const std::vector<double> values = test::random_values(kCount * kDims, 77);
    std::vector<DataPoint<double>> points;
    for (std::size_t n = 0; n < kCount; ++n) {
        points.emplace_back(
            static_cast<int>(kDims), static_cast<int>(n), values.data() + n * kDims);
    }
    VpTree<DataPoint<double>, &euclidean_distance> tree;
    tree.create(points);
    std::vector<DataPoint<double>> nearest;
    std::vector<double> distances;
    tree.search(points[0], 5, &nearest, &distances);
    const std::vector<double> squares = plain::squared_distances(values, kCount, kDims);
    for (std::size_t i = 0; i < nearest.size(); ++i) {
        EXPECT_EQ(distances[i], std::sqrt(squares[static_cast<std::size_t>(nearest[i].index)]));
    }

    const auto expected = plain::neighbour_similarities(values, kCount, kDims, 10.0, 30);
    const SparseMatrix matrix = neighbour_affinities(values.data(), kCount, kDims, 10.0, 30);
    for (std::size_t n = 0; n < kCount; ++n) {
        for (std::size_t m = 0; m < 30; ++m) {
            EXPECT_EQ(matrix.col_P[n * 30 + m], expected[n][m].first);
            EXPECT_EQ(matrix.val_P[n * 30 + m], expected[n][m].second);
        }
    }
}

}  // namespace
}  // namespace ovik
