#include "neighbours/projection_trees.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using Leaves = std::set<std::vector<std::uint32_t>>;

Leaves leaves_of(const std::vector<double>& points, std::size_t dims, std::uint64_t tree) {
    Leaves leaves;
    std::mutex mutex;
    visit_projection_tree(points.data(),
                          points.size() / dims,
                          dims,
                          euclidean_metric(),
                          tree,
                          40,
                          [&](std::span<const std::uint32_t> rows, std::size_t /*worker*/) {
                              std::vector<std::uint32_t> leaf(rows.begin(), rows.end());
                              std::sort(leaf.begin(), leaf.end());
                              const std::lock_guard lock(mutex);
                              leaves.insert(leaf);
                          });
    return leaves;
}

TEST(ProjectionTree, HasEveryRowInOneLeafForAnyNumberOfThreads) {
    for (const std::size_t N : {1U, 40U, 41U, 5000U}) {
        const std::vector<double> points = test::random_values(N * 3, 80);
        const Leaves leaves = leaves_of(points, 3, 7);
        std::vector<std::uint32_t> rows;
        for (const auto& leaf : leaves) {
            EXPECT_LE(leaf.size(), 40U);
            rows.insert(rows.end(), leaf.begin(), leaf.end());
        }
        std::sort(rows.begin(), rows.end());
        ASSERT_EQ(rows.size(), N);
        for (std::size_t i = 0; i < N; ++i) {
            ASSERT_EQ(rows[i], i);
        }
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            for (const InstructionSet set : test::available_instruction_sets()) {
                const test::InstructionLimit limit(set);
                EXPECT_EQ(leaves_of(points, 3, 7), leaves);
            }
        }
    }
}

TEST(ProjectionTree, IsAnotherForAnotherNumber) {
    const std::vector<double> points = test::random_values(2000, 81);
    EXPECT_NE(leaves_of(points, 2, 1), leaves_of(points, 2, 2));
}

TEST(ProjectionTree, HasNearRowsInALeaf) {
    // Two clusters of like size: the first split parts them, whatever rows are drawn in both.
    std::vector<double> points = test::random_values(64 * 5, 82);
    for (std::size_t i = 0; i < points.size() / 2; ++i) {
        points[i] += 1000.0;
    }
    std::size_t parted = 0;
    for (std::uint64_t tree = 0; tree < 20; ++tree) {
        const Leaves leaves = leaves_of(points, 5, tree);
        parted += std::all_of(leaves.begin(), leaves.end(), [](const auto& leaf) {
            return leaf.back() < 32 || leaf.front() >= 32;
        });
    }
    EXPECT_GE(parted, 5U);
}

TEST(ProjectionTree, SplitsRowsThatAreAllEqual) {
    const Leaves leaves = leaves_of(std::vector<double>(1000, 1.5), 2, 3);
    EXPECT_EQ(leaves.size(), 16U);
}

}  // namespace
}  // namespace ovik
