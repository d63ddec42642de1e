#include "neighbours/approximate_search.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using Lists = std::vector<std::vector<NearRow>>;

struct Found {
    Lists lists;
    NeighbourRecall recall;

    bool operator==(const Found&) const = default;
};

Found found_in(const std::vector<double>& points, std::size_t dims, std::size_t count) {
    const std::size_t N = points.size() / dims;
    Found found{Lists(N), {}};
    found.recall = find_approximately(
        points.data(),
        N,
        dims,
        count,
        euclidean_metric(),
        {},
        [&](std::size_t row, std::span<const NearRow> neighbours, std::size_t /*worker*/) {
            found.lists[row].assign(neighbours.begin(), neighbours.end());
        });
    return found;
}

/// Whether lists are in order, and of distinct other rows at their distances.
void expect_proper_lists(const std::vector<double>& points, std::size_t dims, const Lists& lists) {
    for (std::size_t row = 0; row < lists.size(); ++row) {
        std::vector<std::uint32_t> rows;
        for (const NearRow& one : lists[row]) {
            ASSERT_NE(one.row, row);
            rows.push_back(one.row);
            ASSERT_EQ(one.distance,
                      euclidean_metric().distance(
                          points.data() + row * dims, points.data() + one.row * dims, dims));
        }
        ASSERT_TRUE(std::is_sorted(lists[row].begin(), lists[row].end(), is_nearer));
        std::sort(rows.begin(), rows.end());
        ASSERT_EQ(std::adjacent_find(rows.begin(), rows.end()), rows.end());
    }
}

double recall_by_comparison(const std::vector<double>& points,
                            std::size_t dims,
                            const Lists& lists,
                            std::size_t every) {
    std::size_t hits = 0;
    std::size_t wanted = 0;
    for (std::size_t row = 0; row < lists.size(); row += every) {
        const auto nearest = test::nearest_of(points, dims, row, lists[row].size());
        wanted += nearest.size();
        for (const NearRow& one : lists[row]) {
            hits += one.distance <= nearest.back().distance ? 1 : 0;
        }
    }
    return static_cast<double>(hits) / static_cast<double>(wanted);
}

TEST(FindApproximately, FindsTheSameForAnyNumberOfThreadsAndInstructionSet) {
    const std::vector<double> points = test::random_values(5000 * 20, 86);
    const Found found = found_in(points, 20, 15);
    expect_proper_lists(points, 20, found.lists);
    EXPECT_TRUE(std::all_of(found.lists.begin(), found.lists.end(), [](const auto& list) {
        return list.size() == 15;
    }));
    EXPECT_GE(found.recall.share, 0.95);
    EXPECT_EQ(found.recall.rows, 1000U);
    EXPECT_NEAR(found.recall.share, recall_by_comparison(points, 20, found.lists, 25), 0.02);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        EXPECT_TRUE(found_in(points, 20, 15) == found) << threads << " threads";
    }
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        EXPECT_TRUE(found_in(points, 20, 15) == found) << static_cast<int>(set);
    }
}

TEST(FindApproximately, FindsAllWhereOneLeafHoldsThem) {
    for (const std::size_t N : {2U, 3U, 17U, 600U}) {
        const std::vector<double> points = test::random_values(N * 4, 87);
        const std::size_t count = std::min<std::size_t>(N - 1, 20);
        const Found found = found_in(points, 4, count);
        EXPECT_EQ(found.recall, (NeighbourRecall{1.0, N}));
        for (std::size_t row = 0; row < N; ++row) {
            ASSERT_EQ(found.lists[row], test::nearest_of(points, 4, row, count));
        }
    }
}

TEST(FindApproximately, BearsTiesDuplicatesAndRowsFarAway) {
    std::vector<double> points = test::random_values(3000 * 2, 88, 3.0);
    for (double& value : points) {
        value = std::round(value);
    }
    points[77] = 1e12;
    const Found found = found_in(points, 2, 12);
    expect_proper_lists(points, 2, found.lists);
    EXPECT_GE(found.recall.share, 0.99);
    const test::ThreadCount scope(5);
    EXPECT_TRUE(found_in(points, 2, 12) == found);
}

TEST(FindApproximately, TellsHowFarItIsAndEndsWhenItsCallerThrows) {
    const std::vector<double> points = test::random_values(3000 * 3, 89);
    for (const int threads : {1, 2}) {
        const test::ThreadCount scope(threads);
        std::uint64_t last = 0;
        std::size_t calls = 0;
        std::atomic<std::size_t> visits = 0;
        const auto run = [&](std::size_t end) {
            last = calls = visits = 0;
            find_approximately(
                points.data(),
                3000,
                3,
                10,
                euclidean_metric(),
                [&](Stage stage, std::uint64_t done, std::uint64_t total) {
                    EXPECT_EQ(stage, Stage::Neighbours);
                    EXPECT_EQ(total, 3000U);
                    EXPECT_GE(done, last);
                    last = done;
                    if (++calls == end) {
                        throw std::runtime_error("enough");
                    }
                },
                [&](std::size_t, std::span<const NearRow>, std::size_t) { ++visits; });
        };
        run(0);
        EXPECT_GE(calls, 20U);
        EXPECT_EQ(last, 3000U);
        EXPECT_EQ(visits, 3000U);
        EXPECT_THROW(run(3), std::runtime_error);
        EXPECT_EQ(calls, 3U);
        EXPECT_EQ(visits, 0U);
    }
}

}  // namespace
}  // namespace ovik
