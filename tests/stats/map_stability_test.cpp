#include "stats/map_stability.h"

#include <atomic>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "stats/fit.h"
#include "stats/map_agreement.h"

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 90;
constexpr FitOptions kOptions{.perplexity = 7.5, .max_iter = 20, .stop_lying_iter = 8};

std::vector<double> turned(const std::vector<double>& map) {
    std::vector<double> result;
    for (std::size_t i = 0; i < map.size(); i += 2) {
        // Mirrored, turned by a right angle, moved and doubled.
        result.push_back(2.0 * map[i + 1] + 7.0);
        result.push_back(2.0 * map[i] - 3.0);
    }
    return result;
}

TEST(VariedMap, IsTheMapOfAnotherSeed) {
    const std::vector<double> X = test::random_values(kRows * 4, 1);
    const MatrixView<const double> view{X.data(), kRows, 4};
    std::vector<double> values = X;
    FitOptions options = kOptions;
    options.seed += 3;
    const Fit expected = fit({values.data(), kRows, 4}, options);
    EXPECT_EQ(varied_map(view, kOptions, Variation::Seeds, 2), expected.embedding);
    // Every start along components is the same: other seeds start at random all the same.
    options = kOptions;
    options.start = StartKind::Pca;
    EXPECT_EQ(varied_map(view, options, Variation::Seeds, 2), expected.embedding);
}

TEST(VariedMaps, AreTheSameForAnyNumberOfThreadsAndEndWhereTheyAreToldTo) {
    const std::vector<double> X = test::random_values(kRows * 4, 1);
    const MatrixView<const double> view{X.data(), kRows, 4};
    for (const Variation variation : {Variation::Seeds, Variation::Columns}) {
        std::vector<std::vector<double>> first;
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            const auto maps = varied_maps(view, kOptions, variation, 3);
            first = first.empty() ? maps : first;
            EXPECT_EQ(maps, first) << threads;
        }
        ASSERT_EQ(first.size(), 3U);
        EXPECT_NE(first[0], first[1]);
        EXPECT_EQ(first[2], varied_map(view, kOptions, variation, 2));
        std::atomic<int> asked = 0;
        EXPECT_TRUE(
            varied_maps(view, kOptions, variation, 3, 0, [&] { return ++asked < 10; }).empty());
    }
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
    // Three clusters on a line; on the other map the last two are one.
    std::vector<double> map = test::random_values(kRows * 2, 4, 0.1);
    std::vector<std::uint32_t> clusters;
    for (std::size_t n = 0; n < kRows; ++n) {
        clusters.push_back(static_cast<std::uint32_t>(n % 3));
        map[2 * n] += 10.0 * static_cast<double>(n % 3);
    }
    std::vector<double> other = map;
    for (std::size_t n = 2; n < kRows; n += 3) {
        other[2 * n] -= 10.0;
    }
    const std::vector<std::vector<double>> others = {other, map};
    const auto pairs = cluster_pairs({map.data(), kRows, 2}, others, clusters);
    ASSERT_EQ(pairs.size(), 3U);
    for (const ClusterPair& pair : pairs) {
        EXPECT_LT(pair.first, pair.second);
        EXPECT_EQ(pair.separation, 1.0);
        EXPECT_EQ(pair.apart, pair.first == 1 ? 0.5 : 1.0);
    }
    const auto mixed = cluster_pairs({other.data(), kRows, 2}, others, clusters);
    EXPECT_NEAR(mixed[2].separation, 0.5, 0.2);
    // A cluster of one row is left out.
    clusters[4] = 3;
    EXPECT_EQ(cluster_pairs({map.data(), kRows, 2}, others, clusters).size(), 3U);
}

}  // namespace
}  // namespace ovik
