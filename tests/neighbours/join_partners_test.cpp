#include "neighbours/join_partners.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 9000;

/// Lists of which each row has met some others.
NearestLists& fill(NearestLists& lists) {
    NearestLists::Scratch scratch;
    for (std::size_t row = 0; row < kRows; ++row) {
        std::vector<std::uint32_t> others;
        for (std::size_t i = 1; i <= 12; ++i) {
            others.push_back(static_cast<std::uint32_t>((row + i * i * 37) % kRows));
        }
        lists.offer(row, others, scratch);
        for (std::size_t place = 0; place < lists.count(row); place += 3) {
            lists.markAsOld(row, place);
        }
    }
    return lists;
}

using Partners = std::vector<std::vector<std::uint32_t>>;

/// Those that may be drawn for each row.
Partners possible(const NearestLists& lists, bool is_new) {
    Partners partners(kRows);
    for (std::size_t row = 0; row < kRows; ++row) {
        for (std::size_t place = 0; place < lists.count(row); ++place) {
            if (lists.isNew(row, place) == is_new) {
                const std::uint32_t other = lists.at(row, place).row;
                partners[row].push_back(other);
                partners[other].push_back(static_cast<std::uint32_t>(row));
            }
        }
    }
    for (auto& of_row : partners) {
        std::sort(of_row.begin(), of_row.end());
        of_row.erase(std::unique(of_row.begin(), of_row.end()), of_row.end());
    }
    return partners;
}

TEST(JoinPartners, AreDrawnOfNeighboursOnBothSidesForAnyNumberOfThreads) {
    const std::vector<double> points = test::random_values(kRows * 2, 83);
    std::vector<std::vector<std::uint32_t>> expected;
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        NearestLists lists(points.data(), kRows, 2, 8, euclidean_metric());
        const Partners fresh = possible(fill(lists), true);
        const Partners known = possible(lists, false);
        const std::size_t new_before = 5;
        const JoinPartners partners(lists, 6, 1);
        std::vector<std::vector<std::uint32_t>> all;
        for (std::size_t row = 0; row < kRows; ++row) {
            const auto drawn = partners.fresh(row);
            const auto others = partners.known(row);
            const std::set<std::uint32_t> drawn_set(drawn.begin(), drawn.end());
            ASSERT_EQ(drawn_set.size(), drawn.size());
            ASSERT_EQ(drawn.size(), std::min<std::size_t>(6, fresh[row].size()));
            ASSERT_TRUE(std::includes(
                fresh[row].begin(), fresh[row].end(), drawn_set.begin(), drawn_set.end()));
            for (const std::uint32_t one : others) {
                ASSERT_TRUE(std::binary_search(known[row].begin(), known[row].end(), one));
                ASSERT_EQ(drawn_set.count(one), 0U);
            }
            // Those that were drawn are old from now on.
            std::size_t still_new = 0;
            for (std::size_t place = 0; place < lists.count(row); ++place) {
                still_new += lists.isNew(row, place) ? 1 : 0;
                if (lists.isNew(row, place)) {
                    ASSERT_EQ(drawn_set.count(lists.at(row, place).row), 0U);
                }
            }
            ASSERT_LE(still_new, new_before);
            all.emplace_back(drawn.begin(), drawn.end());
            all.emplace_back(others.begin(), others.end());
        }
        if (expected.empty()) {
            expected = all;
        }
        EXPECT_EQ(all, expected) << threads;
    }
}

TEST(JoinPartners, AreOthersInEachRound) {
    const std::vector<double> points = test::random_values(kRows * 2, 84);
    NearestLists first(points.data(), kRows, 2, 8, euclidean_metric());
    NearestLists second(points.data(), kRows, 2, 8, euclidean_metric());
    const JoinPartners one(fill(first), 3, 0);
    const JoinPartners other(fill(second), 3, 1);
    std::size_t same = 0;
    for (std::size_t row = 0; row < kRows; ++row) {
        same += std::equal(one.fresh(row).begin(),
                           one.fresh(row).end(),
                           other.fresh(row).begin(),
                           other.fresh(row).end())
                    ? 1
                    : 0;
    }
    EXPECT_LT(same, kRows / 4);
}

}  // namespace
}  // namespace ovik
