#include "neighbours/vptree.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "neighbours/data_point.h"
#include "neighbours/euclidean_distance.h"

#include "tests/plain/plain_tsne.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

using Tree = VpTree<DataPoint<double>, &euclidean_distance>;
using Points = std::vector<DataPoint<double>>;

Points points_of(const std::vector<double>& values, int dims) {
    Points points;
    const auto count = static_cast<int>(values.size()) / dims;
    for (int n = 0; n < count; ++n) {
        points.emplace_back(dims, n, values.data() + n * dims);
    }
    return points;
}

struct Answer {
    std::vector<int> indices;
    std::vector<double> distances;
};

Answer ask(Tree& tree, const DataPoint<double>& target, int k) {
    Points results;
    Answer answer;
    tree.search(target, k, &results, &answer.distances);
    for (const auto& result : results) {
        answer.indices.push_back(result.index);
    }
    return answer;
}

std::vector<double> nearest_distances(const Points& points,
                                      const DataPoint<double>& target,
                                      int k) {
    std::vector<double> distances;
    for (const auto& point : points) {
        distances.push_back(euclidean_distance(point, target));
    }
    std::sort(distances.begin(), distances.end());
    distances.resize(std::min(distances.size(), static_cast<std::size_t>(k)));
    return distances;
}

TEST(VpTree, AnswersNothingWithoutPoints) {
    Tree tree;
    tree.create({});
    EXPECT_EQ(tree.root, nullptr);
    const double origin[] = {0.0};
    EXPECT_TRUE(ask(tree, {1, 0, origin}, 3).indices.empty());
}

TEST(VpTree, HoldsASinglePointInALeaf) {
    Tree tree;
    tree.create(points_of({2.0}, 1));
    ASSERT_NE(tree.root, nullptr);
    EXPECT_EQ(tree.root->left, nullptr);
    EXPECT_EQ(tree.root->right, nullptr);
    const double origin[] = {0.0};
    const Answer answer = ask(tree, {1, 0, origin}, 1);
    EXPECT_EQ(answer.indices, std::vector<int>{0});
    EXPECT_EQ(answer.distances, std::vector<double>{2.0});
}

TEST(VpTree, ReturnsAllPointsNearestFirstWhenAskedForMore) {
    Tree tree;
    tree.create(points_of({5.0, -1.0, 3.0}, 1));
    const double origin[] = {0.0};
    const Answer answer = ask(tree, {1, 0, origin}, 10);
    EXPECT_EQ(answer.indices, (std::vector<int>{1, 2, 0}));
    EXPECT_EQ(answer.distances, (std::vector<double>{1.0, 3.0, 5.0}));
}

TEST(VpTree, ReturnsNothingForNoNeighbours) {
    Tree tree;
    tree.create(points_of({5.0, -1.0, 3.0}, 1));
    const double origin[] = {0.0};
    EXPECT_TRUE(ask(tree, {1, 0, origin}, 0).indices.empty());
    EXPECT_TRUE(ask(tree, {1, 0, origin}, -1).indices.empty());
}

TEST(VpTree, CollectsDuplicatesAtDistanceZero) {
    Tree tree;
    tree.create(points_of(std::vector<double>(40, 1.0), 2));
    EXPECT_EQ(tree.root->threshold, 0.0);
    const double place[] = {1.0, 1.0};
    const Answer answer = ask(tree, {2, 0, place}, 5);
    EXPECT_EQ(answer.distances, std::vector<double>(5, 0.0));
    std::vector<int> indices = answer.indices;
    std::sort(indices.begin(), indices.end());
    EXPECT_EQ(std::unique(indices.begin(), indices.end()), indices.end());
}

TEST(VpTree, KeepsTheFirstOfEqualsOnceTheHeapIsFull) {
    // All points lie at distance 1 from the target, so the first one met stays: the root.
    const Points points = points_of({1.0, 0.0, -1.0, 0.0, 0.0, 1.0, 0.0, -1.0}, 2);
    Tree tree;
    tree.create(points);
    const double origin[] = {0.0, 0.0};
    const Answer answer = ask(tree, {2, 0, origin}, 1);
    EXPECT_EQ(answer.indices, std::vector<int>{tree.items[0].index});
}

TEST(VpTree, DrawsOnceForEveryNodeOfTwoPointsOrMore) {
    for (const std::size_t count : {0U, 1U, 2U, 3U, 10U, 97U}) {
        std::srand(42);
        for (std::size_t i = 0; i < plain::tree_draws(count); ++i) {
            std::rand();
        }
        const int expected = std::rand();
        std::srand(42);
        Tree tree;
        tree.create(points_of(test::random_values(count * 3, 1), 3));
        EXPECT_EQ(std::rand(), expected) << count << " points";
    }
}

void expect_split(const Tree& tree, const Tree::Node* node, int lower, int upper) {
    if (node == nullptr) {
        EXPECT_EQ(lower, upper);
        return;
    }
    EXPECT_EQ(node->index, lower);
    if (upper - lower < 2) {
        return;
    }
    const int median = (lower + upper) / 2;
    const auto& vantage = tree.items[static_cast<std::size_t>(lower)];
    for (int i = lower + 1; i < upper; ++i) {
        const double distance =
            euclidean_distance(vantage, tree.items[static_cast<std::size_t>(i)]);
        if (i < median) {
            EXPECT_LE(distance, node->threshold);
        } else {
            EXPECT_GE(distance, node->threshold);
        }
    }
    expect_split(tree, node->left, lower + 1, median);
    expect_split(tree, node->right, median, upper);
}

TEST(VpTree, PutsTheNearerHalfLeftOfEveryNode) {
    Tree tree;
    tree.create(points_of(test::random_values(300, 3), 3));
    expect_split(tree, tree.root, 0, 100);
}

TEST(VpTree, DiscardsTheEarlierTreeWhenCreatedAgain) {
    Tree tree;
    tree.create(points_of(test::random_values(300, 3), 3));
    tree.create(points_of({4.0}, 1));
    const double origin[] = {0.0};
    EXPECT_EQ(ask(tree, {1, 0, origin}, 5).distances, std::vector<double>{4.0});
}

TEST(VpTree, EndsOnCoordinatesThatAreNotFinite) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    std::vector<double> values = test::random_values(60, 9);
    values[3] = nan;
    values[10] = inf;
    values[11] = -inf;
    Tree tree;
    const Points points = points_of(values, 2);
    tree.create(points);
    for (const auto& point : points) {
        for (const double distance : ask(tree, point, 7).distances) {
            EXPECT_TRUE(std::isfinite(distance));
        }
    }
    EXPECT_TRUE(ask(tree, points[1], 7).indices.empty());
}

RC_GTEST_PROP(VpTree, FindsTheDistancesOfBruteForce, ()) {
    const int dims = *rc::gen::inRange(1, 5);
    const int count = *rc::gen::inRange(1, 80);
    const int k = *rc::gen::inRange(1, 90);
    // Few distinct values, so that ties and duplicates are common.
    const auto grid = *rc::gen::container<std::vector<int>>(static_cast<std::size_t>(count * dims),
                                                            rc::gen::inRange(-3, 4));
    const std::vector<double> values(grid.begin(), grid.end());
    const Points points = points_of(values, dims);
    Tree tree;
    tree.create(points);
    for (const auto& target : points) {
        const Answer answer = ask(tree, target, k);
        RC_ASSERT(answer.distances == nearest_distances(points, target, k));
        for (std::size_t i = 0; i < answer.indices.size(); ++i) {
            const auto& found = points[static_cast<std::size_t>(answer.indices[i])];
            RC_ASSERT(euclidean_distance(found, target) == answer.distances[i]);
        }
    }
}

RC_GTEST_PROP(VpTree, AnswersTheSameThroughTheThreadSafeQuery, ()) {
    const int count = *rc::gen::inRange(0, 60);
    const int k = *rc::gen::inRange(0, 70);
    const auto grid = *rc::gen::container<std::vector<int>>(static_cast<std::size_t>(count * 2),
                                                            rc::gen::inRange(-3, 4));
    const std::vector<double> values(grid.begin(), grid.end());
    const Points points = points_of(values, 2);
    Tree tree;
    tree.create(points);
    Tree::Query query;
    for (const auto& target : points) {
        const Answer expected = ask(tree, target, k);
        const Tree& finished = tree;
        finished.search(target, k, query);
        RC_ASSERT(query.neighbours.size() == expected.indices.size());
        for (std::size_t i = 0; i < expected.indices.size(); ++i) {
            const auto position = static_cast<std::size_t>(query.neighbours[i].index);
            RC_ASSERT(tree.items[position].index == expected.indices[i]);
            RC_ASSERT(query.neighbours[i].dist == expected.distances[i]);
        }
    }
}

}  // namespace
}  // namespace ovik
