#include "neighbours/measured_recall.h"

#include <vector>

#include <gtest/gtest.h>

#include "neighbours/row_extent.h"

#include "tests/support/instruction_sets.h"
#include "tests/support/nearest_rows.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

NeighbourRecall recall_of(const std::vector<double>& points,
                          std::size_t dims,
                          const NearestLists& lists,
                          std::size_t most) {
    const double scale =
        packing_scale(*packable_extent(points.data(), lists.rowCount(), dims, euclidean_metric()));
    return measured_recall(
        points.data(), dims, scale, euclidean_metric(), lists, lists.length(), most);
}

TEST(MeasuredRecall, IsTheShareOfTheNearestThatWereFound) {
    const std::vector<double> points = test::random_values(400 * 3, 85);
    NearestLists lists(points.data(), 400, 3, 5, euclidean_metric());
    EXPECT_EQ(recall_of(points, 3, lists, 1000), (NeighbourRecall{0.0, 400}));
    NearestLists::Scratch scratch;
    for (std::size_t row = 0; row < 400; ++row) {
        const std::vector<NearRow> nearest = test::nearest_of(points, 3, row, 7);
        // Every other row has all; the others lack two, for which one that is farther stands.
        std::vector<std::uint32_t> offered;
        for (std::size_t i = 0; i < 5; ++i) {
            offered.push_back(nearest[row % 2 == 0 || i < 3 ? i : i + 2].row);
        }
        lists.offer(row, offered, scratch);
    }
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        for (const InstructionSet set : test::available_instruction_sets()) {
            const test::InstructionLimit limit(set);
            EXPECT_EQ(recall_of(points, 3, lists, 1000), (NeighbourRecall{0.8, 400}));
            const NeighbourRecall sampled = recall_of(points, 3, lists, 100);
            EXPECT_EQ(sampled.rows, 100U);
            EXPECT_NEAR(sampled.share, 0.8, 0.06);
        }
    }
}

TEST(MeasuredRecall, CountsNeighboursAtEqualDistance) {
    // Any of the rows at one place are the nearest.
    const std::vector<double> points(1200, 0.5);
    std::vector<double> others = points;
    others[0] = 1.0;
    NearestLists lists(others.data(), 600, 2, 3, euclidean_metric());
    NearestLists::Scratch scratch;
    for (std::size_t row = 0; row < 600; ++row) {
        lists.offer(row, std::vector<std::uint32_t>{590, 595, 597, 599}, scratch);
    }
    EXPECT_EQ(recall_of(others, 2, lists, 1000), (NeighbourRecall{1.0, 600}));
}

}  // namespace
}  // namespace ovik
