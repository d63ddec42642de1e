#include "neighbours/rank_search.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/toy_metrics.h"

namespace ovik {
namespace {

class RankSearchTest : public testing::TestWithParam<InstructionSet> {
  protected:
    /// Searches with given rows that are near, middling or far, and compares with sorting.
    ///
    /// @return how many rows single precision could not tell apart
    std::size_t undecided(const std::vector<double>& points, std::size_t dims, std::size_t wanted) {
        const test::InstructionLimit limit(GetParam());
        const std::size_t N = points.size() / dims;
        const RankSearch search(points.data(), N, dims, wanted, euclidean_metric());
        EXPECT_GT(search.partCount(), 0U);
        std::mt19937 generator(7);
        RankSearch::Scratch scratch;
        std::size_t visited = 0;
        std::size_t empty = 0;
        for (std::size_t part = 0; part < search.partCount(); ++part) {
            const IndexRange rows = search.rowsOf(part);
            std::vector<std::vector<std::uint32_t>> orders;
            std::vector<std::uint32_t> given;
            for (std::size_t row = rows.begin; row < rows.end; ++row) {
                orders.push_back(test::order_of_others(points, dims, row));
                std::vector<std::uint32_t> some = orders.back();
                some.resize(std::min(some.size(), wanted << row % 4));
                std::shuffle(some.begin(), some.end(), generator);
                given.insert(
                    given.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(wanted));
            }
            search.search(part,
                          given,
                          scratch,
                          [&](std::size_t row,
                              std::span<const std::uint32_t> nearest,
                              std::span<const std::uint32_t> ranks) {
                              EXPECT_EQ(row, visited++);
                              if (nearest.empty()) {
                                  EXPECT_TRUE(ranks.empty());
                                  ++empty;
                                  return;
                              }
                              const std::size_t i = row - rows.begin;
                              ASSERT_TRUE(std::equal(
                                  nearest.begin(),
                                  nearest.end(),
                                  orders[i].begin(),
                                  orders[i].begin() + static_cast<std::ptrdiff_t>(wanted)));
                              for (std::size_t k = 0; k < wanted; ++k) {
                                  ASSERT_EQ(orders[i].at(ranks[k]), given[i * wanted + k]);
                              }
                          });
        }
        EXPECT_EQ(visited, N);
        return empty;
    }
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         RankSearchTest,
                         testing::ValuesIn(test::available_instruction_sets()));

TEST_P(RankSearchTest, FindsTheNearestAndTheRanksThatSortingGives) {
    for (const std::size_t N : {2U, 17U, 129U, 301U}) {
        for (const std::size_t dims : {1U, 3U, 36U}) {
            for (const std::size_t wanted : {1U, 8U, 30U}) {
                if (wanted < N) {
                    EXPECT_EQ(undecided(test::random_values(N * dims, 11), dims, wanted), 0U);
                }
            }
        }
    }
}

TEST_P(RankSearchTest, TellsApartWhatIsFarFromTheOrigin) {
    std::vector<double> points = test::random_values(200 * 4, 12);
    for (double& value : points) {
        value = value * 1e-6 + 1e3;
    }
    EXPECT_EQ(undecided(points, 4, 20), 0U);
}

TEST_P(RankSearchTest, PutsEquallyFarRowsInTheirOrder) {
    std::vector<double> points = test::random_values(250 * 2, 13, 3.0);
    for (double& value : points) {
        value = std::round(value);
    }
    // Where there are too many of them, it says so.
    EXPECT_LT(undecided(points, 2, 5), 250U);
    for (std::size_t n = 0; n < 200; ++n) {
        points[2 * n] = 0.0;
        points[2 * n + 1] = 0.0;
    }
    EXPECT_GT(undecided(points, 2, 5), 0U);
}

TEST_P(RankSearchTest, LeavesRowsUndecidedThatLieTooCloseForSinglePrecision) {
    std::vector<double> points = test::random_values(200 * 3, 14);
    for (std::size_t n = 0; n < 200; ++n) {
        for (std::size_t d = 0; d < 3; ++d) {
            points[3 * n + d] = points[3 * n + d] * 1e-9 + (n % 2 == 0 ? 1.0 : -1.0);
        }
    }
    EXPECT_GT(undecided(points, 3, 10), 0U);
}

TEST_P(RankSearchTest, IsNotMadeWhereTheBoundsDoNotHold) {
    const test::InstructionLimit limit(GetParam());
    const std::vector<double> same(60, 4.0);
    EXPECT_EQ(RankSearch(same.data(), 20, 3, 2, euclidean_metric()).partCount(), 0U);
    const std::vector<double> points = test::random_values(60, 15);
    EXPECT_EQ(RankSearch(points.data(), 20, 3, 2, test::kMaximumMetric).partCount(), 0U);
    EXPECT_GT(RankSearch(points.data(), 20, 3, 2, euclidean_metric()).partCount(), 0U);
}

}  // namespace
}  // namespace ovik
