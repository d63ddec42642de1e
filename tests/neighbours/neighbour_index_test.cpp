#include "neighbours/neighbour_index.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"
#include "tests/support/tree_answers.h"

/// The index for many queries against the vantage-point tree: the same neighbours, the same order,
/// the same distances to the last bit.

namespace ovik {
namespace {

using test::Answer;
using test::Answers;

/// @param group_size  targets that are searched for together
Answers of_index(const std::vector<double>& points,
                 std::size_t dims,
                 int k,
                 std::size_t group_size) {
    const std::size_t N = points.size() / dims;
    std::srand(test::kTreeSeed);
    const NeighbourIndex index(points.data(), N, dims);
    Answers answers{{}, std::rand()};
    NeighbourIndex::Queries queries;
    for (std::size_t first = 0; first < N; first += group_size) {
        const std::size_t count = std::min(group_size, N - first);
        const double* targets[kTargets];
        for (std::size_t t = 0; t < count; ++t) {
            targets[t] = points.data() + (first + t) * dims;
        }
        index.search(targets, count, static_cast<std::size_t>(k), queries);
        for (std::size_t t = 0; t < count; ++t) {
            Answer answer;
            for (const auto& neighbour : queries.neighbours[t]) {
                answer.rows.push_back(static_cast<int>(index.rowAt(neighbour.position)));
                answer.distances.push_back(neighbour.distance);
            }
            answers.of_rows.push_back(answer);
        }
    }
    return answers;
}

void expect_the_same(const std::vector<double>& points, std::size_t dims, int k) {
    const Answers expected = test::answers_of_tree(points, dims, k);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        for (const InstructionSet instructions : test::kInstructionSets) {
            const test::InstructionLimit limit(instructions);
            for (std::size_t group_size = 1; group_size <= kTargets; ++group_size) {
                ASSERT_TRUE(of_index(points, dims, k, group_size) == expected)
                    << threads << " threads, instruction set " << static_cast<int>(instructions)
                    << ", " << group_size << " at once";
            }
        }
    }
}

TEST(NeighbourIndex, AnswersAsTheTreeDoes) {
    expect_the_same(test::random_values(600 * 7, 61), 7, 31);
    expect_the_same(test::random_values(400 * 50, 62), 50, 10);
    expect_the_same(test::random_values(900, 63), 1, 5);
}

TEST(NeighbourIndex, AnswersAsTheTreeDoesOnClustersFarApart) {
    std::vector<double> points = test::random_values(800 * 4, 64, 1e-3);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] += static_cast<double>(i / 4 % 23 * 100);
    }
    expect_the_same(points, 4, 20);
}

TEST(NeighbourIndex, AnswersAsTheTreeDoesOnTiesAndDuplicates) {
    std::vector<double> points = test::random_values(800 * 3, 65, 1.5);
    for (double& value : points) {
        value = std::round(value);
    }
    expect_the_same(points, 3, 12);
    expect_the_same(std::vector<double>(200, 1.0), 2, 9);
}

TEST(NeighbourIndex, AnswersAsTheTreeDoesOnNumbersThatAreNotFinite) {
    std::vector<double> points = test::random_values(300 * 2, 66);
    const double inf = std::numeric_limits<double>::infinity();
    points[31] = std::nan("");
    points[100] = inf;
    points[101] = -inf;
    points[207] = inf;
    points[208] = 1e200;
    expect_the_same(points, 2, 7);
}

TEST(NeighbourIndex, AnswersAsTheTreeDoesForEveryNumberOfPoints) {
    for (std::size_t N = 0; N <= 67; ++N) {
        expect_the_same(test::random_values(N * 2, 67), 2, 6);
    }
}

TEST(NeighbourIndex, FindsNothingWhenNothingIsWanted) {
    expect_the_same(test::random_values(40, 68), 2, 0);
}

RC_GTEST_PROP(NeighbourIndex, AnswersAsTheTreeDoesOnAnyPoints, ()) {
    const auto dims = *rc::gen::inRange<std::size_t>(1, 5);
    const auto count = *rc::gen::inRange<std::size_t>(0, 150);
    const auto k = *rc::gen::inRange(0, 40);
    const auto range = *rc::gen::element(3, 10, 1000);
    const auto grid =
        *rc::gen::container<std::vector<int>>(count * dims, rc::gen::inRange(-range, range));
    const std::vector<double> points(grid.begin(), grid.end());
    const auto group_size = *rc::gen::inRange<std::size_t>(1, kTargets + 1);
    RC_ASSERT(of_index(points, dims, k, group_size) == test::answers_of_tree(points, dims, k));
}

TEST(NeighbourIndex, KnowsHowManyBlocksItTakes) {
    EXPECT_EQ(NeighbourIndex::blockCount(0), 0U);
    EXPECT_EQ(NeighbourIndex::blockCount(1), 1U);
    EXPECT_EQ(NeighbourIndex::blockCount(16), 1U);
    // A point alone, and its halves of 7 and 9.
    EXPECT_EQ(NeighbourIndex::blockCount(17), 3U);
    EXPECT_LT(NeighbourIndex::blockCount(100000), 100000U / 8);
}

TEST(NeighbourIndex, KnowsHowManyNumbersItDraws) {
    for (const std::size_t N : {0U, 1U, 2U, 3U, 15U, 16U, 17U, 100U, 999U}) {
        const std::vector<double> points = test::random_values(N * 2, 69);
        std::srand(7);
        const NeighbourIndex index(points.data(), N, 2);
        const int next = std::rand();
        std::srand(7);
        for (std::size_t draw = 0; draw < NeighbourIndex::drawCount(N); ++draw) {
            std::rand();
        }
        EXPECT_EQ(std::rand(), next) << N << " points";
    }
}

TEST(NeighbourIndex, AsksNoMoreOnceItHasDuplicatesEnough) {
    // Quadratic time would show: every query would see all rows.
    const std::size_t N = 200000;
    const std::vector<double> points(2 * N, 1.5);
    const NeighbourIndex index(points.data(), N, 2);
    NeighbourIndex::Queries queries;
    const double* const target = points.data();
    for (std::size_t n = 0; n < N; ++n) {
        index.search(&target, 1, 31, queries);
        ASSERT_EQ(queries.neighbours[0].size(), 31U);
    }
    EXPECT_EQ(queries.neighbours[0].back().distance, 0.0);
}

}  // namespace
}  // namespace ovik
