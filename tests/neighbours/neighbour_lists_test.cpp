#include "neighbours/neighbour_lists.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string refusal(const std::vector<GivenNeighbour>& given, std::size_t rows) {
    return test::refusal_of([&] { neighbour_lists(given, rows, "g.mtx"); });
}

std::vector<NearRow> row_of(const NeighbourLists& lists, std::size_t row) {
    return {lists.of(row).begin(), lists.of(row).end()};
}

TEST(NeighbourLists, AreSortedByDistanceAndThenByRow) {
    const NeighbourLists lists = neighbour_lists(
        {{2, 0, 8}, {0, 3, 4}, {0, 1, 4}, {0, 2, 8}, {1, 0, 4}, {3, 1, 0}, {1, 2, 2}}, 4, "g");
    ASSERT_EQ(lists.rowCount(), 4U);
    // The largest distance is 8: all are multiplied by 1/16.
    EXPECT_THAT(row_of(lists, 0), ElementsAre(NearRow{1, 0.25}, NearRow{3, 0.25}, NearRow{2, 0.5}));
    EXPECT_THAT(row_of(lists, 1), ElementsAre(NearRow{2, 0.125}, NearRow{0, 0.25}));
    EXPECT_THAT(row_of(lists, 2), ElementsAre(NearRow{0, 0.5}));
    EXPECT_THAT(row_of(lists, 3), ElementsAre(NearRow{1, 0.0}));
}

TEST(NeighbourLists, LeaveOutRowsAsTheirOwnNeighbours) {
    const NeighbourLists lists =
        neighbour_lists({{0, 0, 0}, {0, 1, 1}, {1, 0, 1}, {1, 1, 0}}, 2, "g");
    EXPECT_THAT(row_of(lists, 0), ElementsAre(NearRow{1, 0.5}));
    EXPECT_THAT(row_of(lists, 1), ElementsAre(NearRow{0, 0.5}));
}

TEST(NeighbourLists, AreTheSameInUnitsThatDifferByAPowerOfTwo) {
    std::vector<GivenNeighbour> given = {{0, 1, 0.3}, {1, 2, 0.7}, {2, 0, 1.9}};
    const NeighbourLists expected = neighbour_lists(given, 3, "g");
    for (GivenNeighbour& one : given) {
        one.distance = std::ldexp(one.distance, 900);
    }
    EXPECT_EQ(neighbour_lists(given, 3, "g").nearest, expected.nearest);
}

TEST(NeighbourLists, AreRefusedWithPlaceAndCure) {
    EXPECT_THAT(refusal({{0, 1, 1, 7}, {1, 5, 1, 8}}, 3),
                StartsWith("g.mtx:8: there is no row 6: the matrix has 3\n"));
    EXPECT_THAT(refusal({{5, 1, 1}}, 3),
                StartsWith("g.mtx: there is no row 5: the matrix has 3\n"));
    EXPECT_THAT(refusal({{0, 1, -1, 4}}, 3),
                StartsWith("g.mtx:4: row 1 and its neighbour 2 have the distance -1\n"));
    EXPECT_THAT(refusal({{0, 1, std::nan("")}}, 3), HasSubstr("have the distance nan\n"));
    EXPECT_THAT(refusal({{0, 1, 2e300}}, 3), HasSubstr("have the distance 2e+300\n"));
    EXPECT_THAT(refusal({{1, 1, 1, 9}}, 3),
                StartsWith("g.mtx:9: row 2 has the distance 1 from itself\nDistances are needed"));
    EXPECT_THAT(refusal({{0, 1, 1, 3}, {1, 0, 1, 4}, {0, 1, 1, 5}}, 2),
                StartsWith("g.mtx:5: row 1 and its neighbour 2 stand there twice\n"));
    EXPECT_THAT(
        refusal({{0, 1, 1, 3}, {1, 0, 1.01, 4}}, 2),
        StartsWith("g.mtx:4: row 2 and its neighbour 1 have the distance 1.01, and the other "
                   "way round 1 (line 3)\n"));
    EXPECT_EQ(refusal({{0, 1, 1, 3}, {1, 0, 1.00001, 4}}, 2), "");
    EXPECT_THAT(refusal({{0, 1, 1, 3}, {2, 0, 1, 4}}, 3),
                StartsWith("g.mtx: row 2 has no neighbour"));
    EXPECT_THAT(refusal({}, 3), StartsWith("g.mtx: row 0 has no neighbour\n"));
    EXPECT_THAT(refusal({{0, 1, 0}, {1, 0, 0}}, 2), HasSubstr("nothing to embed"));
}

TEST(NeighbourLists, HaveNoDistanceBesideWhichTheOthersAreNothing) {
    const auto with_pair = [](double distance) {
        return std::vector<GivenNeighbour>{
            {0, 1, 1, 3}, {1, 0, 1, 4}, {2, 0, 2, 5}, {0, 2, 2, 6}, {1, 2, distance, 7}};
    };
    EXPECT_EQ(refusal(with_pair(1e20), 3), "");
    EXPECT_THAT(refusal(with_pair(1.5e20), 3),
                StartsWith("g.mtx:7: row 2 and its neighbour 3 have the distance 1.5e+20, beside "
                           "which the others are as good as 0: rows have their nearest at 1\n"
                           "Leave the pair out of the graph"));
    EXPECT_EQ(refusal({{0, 1, 0}, {1, 0, 0}, {2, 0, 3}}, 3), "");
}

TEST(NearestByDistance, AreTheNearestOfEachRowForAnyThreads) {
    constexpr std::size_t kRows = 150;
    std::vector<double> distances(kRows * kRows);
    const std::vector<double> values = test::random_values(kRows * kRows, 4);
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t m = 0; m < n; ++m) {
            // Of few different values, so that many are equal.
            const double distance = std::round(4.0 * std::fabs(values[n * kRows + m]));
            distances[n * kRows + m] = distances[m * kRows + n] = distance;
        }
    }
    const double scale = distance_scale(distances);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const NeighbourLists lists = nearest_by_distance({distances.data(), kRows, kRows}, 20);
        for (std::size_t n = 0; n < kRows; ++n) {
            std::vector<std::pair<double, std::uint32_t>> others;
            for (std::size_t m = 0; m < kRows; ++m) {
                if (m != n) {
                    others.emplace_back(distances[n * kRows + m] * scale,
                                        static_cast<std::uint32_t>(m));
                }
            }
            std::sort(others.begin(), others.end());
            ASSERT_EQ(lists.of(n).size(), 20U);
            for (std::size_t k = 0; k < 20; ++k) {
                EXPECT_EQ(lists.of(n)[k], (NearRow{others[k].second, others[k].first}));
            }
        }
    }
}

TEST(NearestByDistance, AreFewerWhereDistancesAreNotFinite) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const std::vector<double> distances = {
        0, kInfinity, 1, kInfinity, 0, std::nan(""), 1, -1e-12, 0};
    const NeighbourLists lists = nearest_by_distance({distances.data(), 3, 3}, 9);
    EXPECT_THAT(row_of(lists, 0), ElementsAre(NearRow{2, 0.5}));
    EXPECT_THAT(row_of(lists, 1), IsEmpty());
    EXPECT_THAT(row_of(lists, 2), ElementsAre(NearRow{1, 0.0}, NearRow{0, 0.5}));
}

TEST(DistanceScale, BringsTheLargestBelowOne) {
    EXPECT_EQ(distance_scale(std::vector<double>{0.0, 3.0, 1.0}), 0.25);
    EXPECT_EQ(distance_scale(std::vector<double>{0.5}), 1.0);
    EXPECT_EQ(distance_scale(std::vector<double>{1e300}) * 1e300, std::ldexp(1e300, -997));
    EXPECT_EQ(distance_scale(std::vector<double>{0.0}), 1.0);
    EXPECT_EQ(distance_scale(std::vector<double>{std::nan(""), 1.0}), 0.5);
}

}  // namespace
}  // namespace ovik
