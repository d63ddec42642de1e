#include "neighbours/row_join.h"

#include <numeric>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "neighbours/row_extent.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

/// Holds the lists after all rows were joined to a comparison of all.
void expect_to_join_all(const std::vector<double>& points, std::size_t dims, std::size_t length) {
    const std::size_t N = points.size() / dims;
    const double scale =
        packing_scale(*packable_extent(points.data(), N, dims, euclidean_metric()));
    std::vector<std::uint32_t> rows(N);
    std::iota(rows.begin(), rows.end(), 0U);
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        NearestLists lists(points.data(), N, dims, length, euclidean_metric());
        RowJoin join(points.data(), dims, scale, euclidean_metric(), lists);
        join.joinAll(rows);
        // Again, which finds nothing new.
        join.joinAll(rows);
        for (std::size_t row = 0; row < N; ++row) {
            const std::vector<NearRow> nearest = test::nearest_of(points, dims, row, length);
            ASSERT_EQ(lists.count(row), nearest.size());
            for (std::size_t i = 0; i < nearest.size(); ++i) {
                ASSERT_EQ(lists.at(row, i), nearest[i]) << row << ", place " << i;
            }
        }
    }
}

TEST(RowJoin, ComparesAllRows) {
    expect_to_join_all(test::random_values(400 * 9, 74), 9, 15);
    expect_to_join_all(test::random_values(50 * 3, 75), 3, 49);
    expect_to_join_all(test::random_values(129 * 3, 76), 3, 1);
}

TEST(RowJoin, ComparesAllRowsAtOnePlaceAndFarApart) {
    // Rows at one place and one far away: candidates of one another, all of them.
    std::vector<double> points(1200, 0.25);
    points[0] = points[1] = 1e9;
    expect_to_join_all(points, 2, 7);
    expect_to_join_all(test::random_values(600, 77, 1e140), 2, 7);
    expect_to_join_all(test::random_values(600, 78, 1e-90), 2, 7);
}

TEST(RowJoin, LeavesOutPairsThatAreKnown) {
    const std::vector<double> points = test::random_values(12 * 2, 79);
    const double scale = packing_scale(*packable_extent(points.data(), 12, 2, euclidean_metric()));
    NearestLists lists(points.data(), 12, 2, 11, euclidean_metric());
    RowJoin join(points.data(), 2, scale, euclidean_metric(), lists);
    const std::vector<std::uint32_t> fresh = {1, 4, 5};
    const std::vector<std::uint32_t> known = {0, 2, 9, 11};
    join.joinFresh(fresh, known, points.data());
    for (std::size_t row = 0; row < 12; ++row) {
        const bool is_fresh = std::find(fresh.begin(), fresh.end(), row) != fresh.end();
        const bool is_known = std::find(known.begin(), known.end(), row) != known.end();
        EXPECT_EQ(lists.count(row), is_fresh ? 6U : is_known ? 3U : 0U) << row;
    }
}

}  // namespace
}  // namespace ovik
