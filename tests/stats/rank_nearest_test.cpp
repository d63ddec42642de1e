#include "stats/rank_nearest.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "util/random_stream.h"

#include "tests/support/random_points.h"
#include "tests/support/rank_threads.h"

namespace ovik {
namespace {

/// Three windows of rows, the last of them not full.
constexpr std::size_t kRows = 9000;
constexpr std::size_t kColumns = 3;
constexpr std::size_t kWanted = 9;

NeighbourSearch search_over(std::size_t rows) {
    OwnRandomStream stream;
    stream.seed(5);
    return {rows, kColumns, stream};
}

std::vector<std::vector<NearRow>> others_by_one(MatrixView<const double> points,
                                                NeighbourTies ties) {
    std::vector<std::vector<NearRow>> others(points.rows);
    search_over(points.rows)
        .findAll(points.values,
                 kWanted + 1,
                 [&](std::size_t row, std::span<const NearRow> nearest, std::size_t /*worker*/) {
                     if (!nearest.empty()) {
                         others[row].assign(nearest.begin() + 1, nearest.end());
                     }
                 },
                 {.ties = ties});
    return others;
}

/// Holds what ranks find to what a process by itself does.
void expect_the_same(const std::vector<double>& values,
                     NeighbourTies ties,
                     std::initializer_list<std::size_t> counts = {2, 3, 5}) {
    const MatrixView<const double> points{values.data(), values.size() / kColumns, kColumns};
    const auto expected = others_by_one(points, ties);
    for (const std::size_t count : counts) {
        test::run_ranks(count, [&](Ranks& ranks) {
            const RankRows rows(points.rows, ranks);
            // The others have no values but what the first one gives them.
            MatrixView<const double> own = points;
            own.values = ranks.isFirst() ? points.values : nullptr;
            NeighbourSearch tree = search_over(points.rows);
            const RankNearest nearest(own, kWanted, tree, {.ties = ties}, rows);
            for (std::size_t place = 0; place < rows.own().size(); ++place) {
                const std::span<const NearRow> found = nearest.of(place);
                ASSERT_EQ(std::vector<NearRow>(found.begin(), found.end()),
                          expected[rows.own().begin + place])
                    << place << " of rank " << ranks.rank();
            }
        });
    }
}

std::vector<double> lattice() {
    std::vector<double> values = test::random_values(kRows * kColumns, 4, 3.0);
    for (double& value : values) {
        value = std::floor(value);
    }
    return values;
}

TEST(RankNearest, AreThoseOfASearchByOneProcess) {
    const std::vector<double> values = test::random_values(kRows * kColumns, 4);
    expect_the_same(values, NeighbourTies::OfTree);
    expect_the_same(values, NeighbourTies::ByRow);
}

TEST(RankNearest, AreTheSameWhereManyAreEquallyNear) {
    expect_the_same(lattice(), NeighbourTies::OfTree, {3});
    expect_the_same(lattice(), NeighbourTies::ByRow, {3});
    // A few rows at one place among others.
    std::vector<double> values = test::random_values(kRows * kColumns, 6);
    for (std::size_t row = 4000; row < 4200; ++row) {
        std::copy_n(values.begin(), kColumns, values.begin() + static_cast<int>(row * kColumns));
    }
    expect_the_same(values, NeighbourTies::OfTree, {2, 3});
    expect_the_same(values, NeighbourTies::ByRow, {2, 3});
}

TEST(RankNearest, AreTheSameWhereSinglePrecisionCannotCompare) {
    for (const double scale : {1e160, 1e-160}) {
        std::vector<double> values = test::random_values(5000 * kColumns, 4, scale);
        expect_the_same(values, NeighbourTies::OfTree, {2});
        expect_the_same(values, NeighbourTies::ByRow, {2});
    }
    std::vector<double> values = test::random_values(5000 * kColumns, 4);
    values[7] = std::nan("");
    expect_the_same(values, NeighbourTies::OfTree, {2});
}

TEST(RankNearest, AreTheSameOfFewRows) {
    for (const std::size_t rows : {std::size_t{1}, std::size_t{2}, std::size_t{10}}) {
        const std::vector<double> values = test::random_values(rows * kColumns, 4);
        expect_the_same(values, NeighbourTies::OfTree, {1, 3});
        expect_the_same(values, NeighbourTies::ByRow, {1, 3});
    }
}

TEST(RankNearest, TellOfAllRowsHowFarTheyAre) {
    const std::vector<double> values = test::random_values(kRows * kColumns, 4);
    test::run_ranks(3, [&](Ranks& ranks) {
        std::uint64_t last = 0;
        NeighbourSearchManner manner;
        manner.on_stage = [&](Stage stage, std::uint64_t done, std::uint64_t total) {
            EXPECT_EQ(stage, Stage::Neighbours);
            EXPECT_EQ(total, kRows);
            EXPECT_LE(done, total);
            last = done;
        };
        NeighbourSearch tree = search_over(kRows);
        const RankNearest nearest(
            {values.data(), kRows, kColumns}, kWanted, tree, manner, RankRows(kRows, ranks));
        EXPECT_EQ(last, kRows);
    });
}

}  // namespace
}  // namespace ovik
