#include "stats/map_stability.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "stats/map_agreement.h"

#include "tests/plain/plain_stability.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 90;

std::vector<double> turned(const std::vector<double>& map) {
    std::vector<double> result;
    for (std::size_t i = 0; i < map.size(); i += 2) {
        // Mirrored, turned by a right angle, moved and doubled.
        result.push_back(2.0 * map[i + 1] + 7.0);
        result.push_back(2.0 * map[i] - 3.0);
    }
    return result;
}

/// Three clusters on a line, far apart.
struct ThreeClusters {
    std::vector<double> map;
    /// The same with the last two at one place.
    std::vector<double> joined;
    /// Of each row, 0 to 2.
    std::vector<std::uint32_t> clusters;
};

ThreeClusters three_clusters_on_a_line() {
    ThreeClusters line;
    line.map = test::random_values(kRows * 2, 4, 0.1);
    for (std::size_t n = 0; n < kRows; ++n) {
        line.clusters.push_back(static_cast<std::uint32_t>(n % 3));
        line.map[2 * n] += 10.0 * static_cast<double>(n % 3);
    }
    line.joined = line.map;
    for (std::size_t n = 2; n < kRows; n += 3) {
        line.joined[2 * n] -= 10.0;
    }
    return line;
}

TEST(RowStability, IsWholeWhereTheOthersAreTheSameMapMovedAndMirrored) {
    const std::vector<double> map = test::random_values(kRows * 2, 4);
    const MatrixView<const double> view{map.data(), kRows, 2};
    const std::vector<std::vector<double>> others = {map, turned(map)};
    const RowStability stability = row_stability(view, others);
    for (std::size_t n = 0; n < kRows; ++n) {
        EXPECT_NEAR(stability.spread[n], 0.0, 1e-12);
        EXPECT_EQ(stability.shared[n], 1.0);
    }
}

TEST(RowStability, IsLargeForTheRowThatMoves) {
    const std::vector<double> map = test::random_values(kRows * 2, 4);
    std::vector<double> other = turned(map);
    other[10] += 20.0;
    const RowStability stability =
        row_stability({map.data(), kRows, 2}, std::vector<std::vector<double>>{other});
    for (std::size_t n = 0; n < kRows; ++n) {
        EXPECT_LE(stability.spread[n], stability.spread[5]);
    }
    EXPECT_GT(stability.spread[5], 2.0);
    EXPECT_LT(stability.shared[5], 0.5);
    const MatrixView<const double> others{other.data(), kRows, 2};
    double shared = 0.0;
    for (const double one : stability.shared) {
        shared += one;
    }
    EXPECT_NEAR(
        shared / kRows, map_agreement({map.data(), kRows, 2}, others).shared_neighbours, 1e-14);
}

TEST(ClusterPairs, TellWhichStayApart) {
    auto [map, joined, clusters] = three_clusters_on_a_line();
    const std::vector<std::vector<double>> others = {joined, map};
    const auto pairs = cluster_pairs({map.data(), kRows, 2}, others, clusters);
    ASSERT_EQ(pairs.size(), 3U);
    for (const ClusterPair& pair : pairs) {
        EXPECT_LT(pair.first, pair.second);
        EXPECT_EQ(pair.separation, 1.0);
        EXPECT_EQ(pair.apart, pair.first == 1 ? 0.5 : 1.0);
    }
    const auto mixed = cluster_pairs({joined.data(), kRows, 2}, others, clusters);
    EXPECT_NEAR(mixed[2].separation, 0.5, 0.2);
    // A cluster of one row is left out.
    clusters[4] = 3;
    EXPECT_EQ(cluster_pairs({map.data(), kRows, 2}, others, clusters).size(), 3U);
}

TEST(MapStability, HasWhatEachKindOfMapsTells) {
    const auto [map, joined, clusters] = three_clusters_on_a_line();
    const MatrixView<const double> view{map.data(), kRows, 2};
    const std::vector<std::vector<double>> same = {turned(map), map};
    const std::vector<std::vector<double>> others = {map, joined, joined};
    const RecordedStability stability = map_stability(view, same, others, clusters);
    EXPECT_EQ(stability.seeds, 2U);
    EXPECT_EQ(stability.draws, 3U);
    ASSERT_EQ(stability.columns.size(), 4U);
    EXPECT_EQ(stability.columns[0].name, "shared_10_seeds");
    EXPECT_EQ(stability.columns[1].name, "spread_seeds");
    EXPECT_EQ(stability.columns[0].values, std::vector<double>(kRows, 1.0));
    EXPECT_EQ(stability.columns[2].name, "shared_10_columns");
    EXPECT_EQ(stability.columns[3].values, row_stability(view, others).spread);
    ASSERT_EQ(stability.pairs.size(), 3U);
    for (const RecordedClusterPair& pair : stability.pairs) {
        EXPECT_EQ(pair.separation, 1.0);
        EXPECT_EQ(pair.apart_seeds, 1.0);
        EXPECT_DOUBLE_EQ(pair.apart_columns, pair.first == 1 ? 1.0 / 3.0 : 1.0);
        EXPECT_EQ(pair.stay_apart, pair.first == 0);
    }
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const RecordedStability again = map_stability(view, same, others, clusters);
        EXPECT_EQ(again.columns[3].values, stability.columns[3].values);
        EXPECT_EQ(again.columns[2].values, stability.columns[2].values);
    }
}

TEST(MapStability, DoesWithoutMapsOfAKindAndWithoutClusters) {
    const std::vector<double> map = test::random_values(kRows * 2, 4);
    const MatrixView<const double> view{map.data(), kRows, 2};
    const std::vector<std::vector<double>> others = {turned(map)};
    const RecordedStability rows = map_stability(view, {}, others);
    ASSERT_EQ(rows.columns.size(), 2U);
    EXPECT_EQ(rows.columns[0].name, "shared_10_columns");
    EXPECT_FALSE(rows.has_clusters);
    EXPECT_TRUE(rows.pairs.empty());
    std::vector<std::uint32_t> clusters(kRows, 0);
    clusters[0] = clusters[1] = 1;
    const RecordedStability pairs = map_stability(view, others, {}, clusters);
    ASSERT_EQ(pairs.pairs.size(), 1U);
    EXPECT_TRUE(std::isnan(pairs.pairs[0].apart_columns));
    EXPECT_FALSE(std::isnan(pairs.pairs[0].apart_seeds));
}

TEST(MapStability, IsThatOfThePlainFormForAnyNumberOfThreads) {
    const std::vector<double> map = test::random_values(kRows * 2, 4);
    std::vector<std::vector<double>> others;
    std::vector<std::uint32_t> clusters;
    for (std::uint32_t n = 0; n < kRows; ++n) {
        clusters.push_back(n % 4);
    }
    for (const std::uint32_t seed : {5U, 6U, 7U}) {
        std::vector<double> other = turned(map);
        const std::vector<double> noise = test::random_values(kRows * 2, seed);
        for (std::size_t i = 0; i < other.size(); ++i) {
            other[i] += noise[i];
        }
        others.push_back(other);
    }
    std::vector<double> shared(kRows, 0.0);
    for (const std::vector<double>& other : others) {
        const std::vector<double> shares = plain::rows_shared(map, other, 10);
        std::transform(shared.begin(), shared.end(), shares.begin(), shared.begin(), std::plus<>());
    }
    for (double& share : shared) {
        share /= 3.0;
    }
    const std::vector<double> spread = plain::plane_spread(map, others);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const RecordedStability stability =
            map_stability({map.data(), kRows, 2}, others, others, clusters);
        EXPECT_EQ(stability.columns[0].values, shared);
        for (std::size_t n = 0; n < kRows; ++n) {
            EXPECT_NEAR(stability.columns[1].values[n], spread[n], 1e-12);
        }
        ASSERT_EQ(stability.pairs.size(), 6U);
        for (const RecordedClusterPair& pair : stability.pairs) {
            EXPECT_EQ(pair.separation, plain::separation(map, clusters, pair.first, pair.second));
        }
    }
}

}  // namespace
}  // namespace ovik
