#include "neighbours/nearest_lists.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "util/parallel.h"

#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

std::vector<NearRow> list_of(const NearestLists& lists, std::size_t row) {
    std::vector<NearRow> list;
    for (std::size_t place = 0; place < lists.count(row); ++place) {
        list.push_back(lists.at(row, place));
    }
    return list;
}

TEST(NearestLists, HoldTheNearestWhateverTheOrderAndTheNumberOfThreads) {
    std::vector<double> points = test::random_values(300 * 2, 73, 3.0);
    for (double& value : points) {
        // Many are at equal distances.
        value = std::round(value);
    }
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        NearestLists lists(points.data(), 300, 2, 17, euclidean_metric());
        parallel_tasks(64, threads, [&](std::size_t task, std::size_t /*worker*/) {
            NearestLists::Scratch scratch;
            std::mt19937 generator(static_cast<unsigned int>(task));
            std::vector<std::uint32_t> others(10);
            std::iota(others.begin(), others.end(), static_cast<std::uint32_t>(task % 30 * 10));
            for (std::size_t row = 0; row < 300; ++row) {
                std::shuffle(others.begin(), others.end(), generator);
                lists.offer(row, others, scratch);
            }
        });
        for (std::size_t row = 0; row < 300; ++row) {
            ASSERT_EQ(list_of(lists, row), test::nearest_of(points, 2, row, 17)) << row;
        }
    }
}

TEST(NearestLists, TellWhoIsNew) {
    const std::vector<double> points = {0.0, 1.0, 2.0, 3.0, 5.0, 8.0};
    NearestLists lists(points.data(), 6, 1, 3, euclidean_metric());
    NearestLists::Scratch scratch;
    EXPECT_EQ(lists.farthest(0), std::numeric_limits<double>::infinity());
    lists.offer(0, std::vector<std::uint32_t>{5, 0, 2}, scratch);
    EXPECT_EQ(list_of(lists, 0), (std::vector<NearRow>{{2, 2.0}, {5, 8.0}}));
    EXPECT_EQ(lists.farthest(0), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(lists.isNew(0, 0));
    lists.markAsOld(0, 0);
    EXPECT_FALSE(lists.isNew(0, 0));
    lists.offer(0, std::vector<std::uint32_t>{2, 4, 1}, scratch);
    EXPECT_EQ(list_of(lists, 0), (std::vector<NearRow>{{1, 1.0}, {2, 2.0}, {4, 5.0}}));
    EXPECT_TRUE(lists.isNew(0, 0));
    EXPECT_FALSE(lists.isNew(0, 1));
    EXPECT_TRUE(lists.isNew(0, 2));
    EXPECT_EQ(lists.farthest(0), 5.0);
    EXPECT_EQ(lists.count(1), 0U);
}

}  // namespace
}  // namespace ovik
