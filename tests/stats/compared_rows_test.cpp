#include "stats/compared_rows.h"

#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

using Rows = std::vector<std::uint32_t>;

TEST(ComparedRows, LookAtAsManyNeighboursAsTheLargestSizeOrWhatIsFar) {
    const std::vector<std::size_t> sizes = {3, 7, 5};
    const std::vector<std::size_t> small = {3};
    MisplacedNeighbours misplaced{2, 6};
    EXPECT_EQ(ComparedRows(20, sizes, nullptr).wanted(), 7U);
    EXPECT_EQ(ComparedRows(20, small, &misplaced).wanted(), 6U);
    EXPECT_EQ(ComparedRows(20, small, nullptr).rowCount(), 20U);
}

TEST(ComparedRows, SumUpWhatEachRowKeeps) {
    const std::vector<std::size_t> sizes = {1, 2};
    ComparedRows rows(7, sizes, nullptr);
    const Rows any = {0, 0};
    const Rows kept = {0, 1};
    // The first of the two has rank 4 of six, the other is the nearest.
    const Rows lost = {3, 0};
    for (std::size_t n = 0; n < 7; ++n) {
        rows.add(n, {any, any, n == 2 ? lost : kept});
    }
    const std::vector<NeighbourhoodQuality> quality = rows.quality();
    ASSERT_EQ(quality.size(), 2U);
    EXPECT_EQ(quality[0].neighbours, 1U);
    EXPECT_EQ(quality[0].kept, (std::vector<double>{1, 1, 0, 1, 1, 1, 1}));
    EXPECT_EQ(quality[1].kept, (std::vector<double>{1, 1, 0.5, 1, 1, 1, 1}));
    EXPECT_DOUBLE_EQ(quality[0].preservation, 6.0 / 7.0);
    EXPECT_DOUBLE_EQ(quality[1].preservation, 13.0 / 14.0);
    // 2 (r - k) / (k (2 N - 3 k - 1)) is missing.
    EXPECT_DOUBLE_EQ(quality[0].trusted[2], 1.0 - 2.0 * 3.0 / 10.0);
    EXPECT_DOUBLE_EQ(quality[1].trusted[2], 1.0 - 2.0 * 2.0 / (2.0 * 7.0));
    EXPECT_DOUBLE_EQ(quality[0].trustworthiness, 1.0 - 0.6 / 7.0);
}

TEST(ComparedRows, ListNeighboursThatAreNearHereAndFarThere) {
    const std::vector<std::size_t> sizes;
    MisplacedNeighbours misplaced{2, 3};
    ComparedRows rows(9, sizes, &misplaced);
    rows.add(4, {Rows{1, 2, 3}, Rows{8, 3, 1}, Rows{7, 2, 0}});
    EXPECT_EQ(misplaced.falsely_near[4], Rows{8});
    EXPECT_EQ(misplaced.torn[4], Rows{2});
    EXPECT_TRUE(misplaced.falsely_near[0].empty());
    EXPECT_TRUE(rows.quality().empty());
}

}  // namespace
}  // namespace ovik
