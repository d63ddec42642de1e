#include "neighbours/row_blocks.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

void expect_to_hold_every_row(const std::vector<double>& points, std::size_t dims) {
    const std::size_t N = points.size() / dims;
    const RowBlocks blocks(points.data(), N, dims, euclidean_metric());
    std::vector<std::uint32_t> rows = blocks.order();
    std::sort(rows.begin(), rows.end());
    std::vector<std::uint32_t> all(N);
    std::iota(all.begin(), all.end(), 0U);
    EXPECT_EQ(rows, all);
    std::size_t next = 0;
    for (std::size_t b = 0; b < blocks.blocks().size(); ++b) {
        const RowBlocks::Block& block = blocks.blocks()[b];
        EXPECT_EQ(block.first, next);
        next += block.count;
        EXPECT_GT(block.count, 0U);
        EXPECT_LE(block.count, RowBlocks::kMostRows);
        const double* const centre = blocks.centres() + b * dims;
        for (std::size_t i = 0; i < block.count; ++i) {
            const double* const row = points.data() + blocks.order()[block.first + i] * dims;
            ASSERT_LE(euclidean_metric().distance(row, centre, dims), block.radius);
            EXPECT_EQ(blocks.rows(block)[i], blocks.order()[block.first + i]);
        }
    }
    EXPECT_EQ(next, N);
}

TEST(RowBlocks, HoldEveryRowOnce) {
    for (const int threads : {1, 3}) {
        const test::ThreadCount scope(threads);
        for (const std::size_t N : {1U, 16U, 127U, 128U, 129U, 1000U, 9000U}) {
            expect_to_hold_every_row(test::random_values(N * 3, 21), 3);
        }
    }
}

TEST(RowBlocks, SplitRowsThatAreAllEqual) {
    expect_to_hold_every_row(std::vector<double>(2000, 1.5), 2);
}

TEST(RowBlocks, SplitRowsOfWhichFewAreFarAway) {
    std::vector<double> points = test::random_values(3000, 22);
    for (std::size_t i = 0; i < 8; ++i) {
        points[i] *= 1e9;
    }
    expect_to_hold_every_row(points, 2);
}

TEST(RowBlocks, KeepClustersApart) {
    std::vector<double> points = test::random_values(400 * 4, 23);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i] += i / 4 % 2 == 0 ? 0.0 : 1000.0;
    }
    const RowBlocks blocks(points.data(), 400, 4, euclidean_metric());
    for (const RowBlocks::Block& block : blocks.blocks()) {
        EXPECT_LT(block.radius, 20.0);
    }
}

}  // namespace
}  // namespace ovik
