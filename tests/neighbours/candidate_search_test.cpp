#include "neighbours/candidate_search.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"
#include "tests/support/toy_metrics.h"

namespace ovik {
namespace {

std::vector<double> all_distances(const std::vector<double>& points,
                                  std::size_t dims,
                                  std::size_t row) {
    std::vector<double> distances;
    for (std::size_t n = 0; n < points.size() / dims; ++n) {
        distances.push_back(euclidean_metric().distance(
            points.data() + row * dims, points.data() + n * dims, dims));
    }
    return distances;
}

/// Holds what is found for every row to a comparison with all rows.
///
/// @param most_untold  rows of which nothing may be found
void expect_the_nearest(const std::vector<double>& points,
                        std::size_t dims,
                        std::size_t wanted,
                        std::size_t most_untold = 0) {
    const std::size_t N = points.size() / dims;
    const CandidateSearch search(points.data(), N, dims, wanted);
    ASSERT_GT(search.partCount(), 0U);
    CandidateSearch::Scratch scratch;
    std::vector<bool> is_visited(N, false);
    std::size_t untold = 0;
    for (std::size_t part = 0; part < search.partCount(); ++part) {
        search.search(part, scratch, [&](std::size_t row, std::span<const NearRow> nearest) {
            ASSERT_FALSE(is_visited[row]);
            is_visited[row] = true;
            if (nearest.empty()) {
                ++untold;
                return;
            }
            std::vector<double> distances = all_distances(points, dims, row);
            ASSERT_GE(nearest.size(), wanted);
            std::set<std::uint32_t> rows;
            for (const NearRow& near : nearest) {
                rows.insert(near.row);
                ASSERT_EQ(near.distance, distances[near.row]);
            }
            ASSERT_EQ(rows.size(), nearest.size());
            std::sort(distances.begin(), distances.end());
            for (std::size_t i = 0; i < wanted; ++i) {
                ASSERT_EQ(nearest[i].distance, distances[i]) << "row " << row << ", place " << i;
            }
        });
    }
    EXPECT_LE(untold, most_untold);
    EXPECT_TRUE(std::all_of(is_visited.begin(), is_visited.end(), [](bool is) { return is; }));
}

void expect_the_nearest_with_every_instruction_set(const std::vector<double>& points,
                                                   std::size_t dims,
                                                   std::size_t wanted,
                                                   std::size_t most_untold = 0) {
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        expect_the_nearest(points, dims, wanted, most_untold);
    }
}

TEST(CandidateSearch, FindsTheNearestOfEveryRow) {
    expect_the_nearest_with_every_instruction_set(test::random_values(700 * 30, 41), 30, 32);
    expect_the_nearest_with_every_instruction_set(test::random_values(500, 42), 1, 7);
    expect_the_nearest_with_every_instruction_set(test::random_values(64 * 3, 43), 3, 64);
    expect_the_nearest_with_every_instruction_set(test::random_values(300 * 3, 44), 3, 1);
}

TEST(CandidateSearch, FindsTheNearestInManyDimensions) {
    expect_the_nearest(test::random_values(100 * 2000, 45), 2000, 10);
}

TEST(CandidateSearch, FindsTheNearestFarFromTheOriginAndInClustersFarApart) {
    std::vector<double> points = test::random_values(500 * 6, 46);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] += 1e7 + 1e6 * static_cast<double>(i / 6 % 7);
    }
    expect_the_nearest_with_every_instruction_set(points, 6, 20);
}

TEST(CandidateSearch, FindsTheNearestOfLargeAndSmallNumbers) {
    expect_the_nearest_with_every_instruction_set(test::random_values(1000, 47, 1e140), 5, 11);
    expect_the_nearest_with_every_instruction_set(test::random_values(1000, 48, 1e-90), 5, 11);
    // One row so far away that the others are the same in single precision.
    std::vector<double> points = test::random_values(600, 49, 1e-60);
    points[100] = 1.0;
    expect_the_nearest_with_every_instruction_set(points, 2, 9, 300);
}

TEST(CandidateSearch, FindsTheNearestAmongEqualDistances) {
    std::vector<double> points = test::random_values(900, 50, 2.0);
    for (double& value : points) {
        value = std::round(value);
    }
    expect_the_nearest_with_every_instruction_set(points, 3, 25);
}

TEST(CandidateSearch, FindsTheNearestWhereDistancesDifferInTheLastPlace) {
    std::vector<double> points;
    for (int n = 0; n < 300; ++n) {
        points.push_back(std::cos(0.02 * n));
        points.push_back(std::sin(0.02 * n));
    }
    points[0] = points[1] = 0.0;
    // Nothing is found for the centre.
    expect_the_nearest_with_every_instruction_set(points, 2, 40, 1);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] = 1.0 + static_cast<double>(i * 7 % 31) * std::numeric_limits<double>::epsilon();
    }
    expect_the_nearest_with_every_instruction_set(points, 2, 40, 300);
}

TEST(CandidateSearch, GivesUpRowsWithTooManyCandidates) {
    // Two far ends, and between them many rows at one place: candidates of all, of one another too.
    std::vector<double> points(2000, 0.25);
    points[0] = points[1] = 0.0;
    points[2] = points[3] = 1.0;
    expect_the_nearest_with_every_instruction_set(points, 2, 9, 1000);
    const CandidateSearch search(points.data(), 1000, 2, 9);
    CandidateSearch::Scratch scratch;
    std::size_t untold = 0;
    for (std::size_t part = 0; part < search.partCount(); ++part) {
        search.search(part, scratch, [&](std::size_t, std::span<const NearRow> nearest) {
            untold += nearest.empty() ? 1 : 0;
        });
    }
    EXPECT_GE(untold, 998U);
}

TEST(CandidateSearch, IsNotMadeWhereItsBoundsWouldNotHold) {
    const std::vector<double> points = test::random_values(2000, 51);
    const auto blocks =
        [](const std::vector<double>& values, std::size_t dims, std::size_t wanted) {
            return CandidateSearch(values.data(), values.size() / dims, dims, wanted).partCount();
        };
    EXPECT_GT(blocks(points, 2, 10), 0U);
    EXPECT_EQ(blocks(points, 2, 0), 0U);
    EXPECT_EQ(blocks(points, 2, 1001), 0U);
    // Too few rows.
    EXPECT_EQ(blocks(points, 100, 5), 0U);
    EXPECT_EQ(blocks({}, 2, 5), 0U);
    for (const double odd : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e151, -1e200}) {
        for (const std::size_t place : {0U, 1U, 777U, 1999U}) {
            std::vector<double> some = points;
            some[place] = odd;
            EXPECT_EQ(blocks(some, 2, 10), 0U) << odd << " at " << place;
        }
    }
    EXPECT_EQ(blocks(std::vector<double>(2000, 1.5), 2, 10), 0U);
    EXPECT_EQ(blocks(test::random_values(2000, 52, 1e-160), 2, 10), 0U);
    // Under a metric without the kernels.
    EXPECT_EQ(CandidateSearch(points.data(), 1000, 2, 10, test::kMaximumMetric).partCount(), 0U);
}

TEST(CandidateSearch, HasAMarginAboveTheErrorsOfATree) {
    const std::vector<double> points = test::random_values(1000 * 80, 53);
    const CandidateSearch search(points.data(), 1000, 80, 10);
    const std::vector<double> distances = all_distances(points, 80, 0);
    const double longest = *std::max_element(distances.begin(), distances.end());
    EXPECT_GT(search.margin(), 4.0 * 80 * std::numeric_limits<double>::epsilon() * longest);
    EXPECT_LT(search.margin(), 1e-12 * longest);
}

TEST(IsCertain, NeedsAGapBehindTheLastAndNoEqualDistances) {
    const std::vector<NearRow> nearest = {{4, 0.0}, {1, 1.0}, {7, 1.5}, {2, 1.5}, {3, 1.6}};
    EXPECT_TRUE(is_certain(nearest, 0, 0.01));
    EXPECT_TRUE(is_certain(nearest, 1, 0.01));
    EXPECT_TRUE(is_certain(nearest, 2, 0.01));
    EXPECT_FALSE(is_certain(nearest, 3, 0.01));
    EXPECT_FALSE(is_certain(nearest, 4, 0.01));
    EXPECT_FALSE(is_certain(nearest, 5, 0.01));
    EXPECT_FALSE(is_certain(nearest, 2, 0.5));
    EXPECT_FALSE(is_certain({}, 0, 0.01));
}

}  // namespace
}  // namespace ovik
