#include "stats/slice_layout.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

std::vector<std::uint32_t> lengths_of(std::size_t N) {
    std::vector<std::uint32_t> lengths(N);
    for (std::size_t n = 0; n < N; ++n) {
        lengths[n] = static_cast<std::uint32_t>(n * 2654435761U % 41U);
    }
    return lengths;
}

TEST(SliceLayout, PutsTheLongestRowsOfAWindowFirstAndEqualOnesInTheirOrder) {
    for (const std::size_t N : {0U, 1U, 7U, 8U, 9U, 4095U, 4096U, 4097U, 9001U}) {
        const std::vector<std::uint32_t> lengths = lengths_of(N);
        const SliceLayout layout(lengths);
        ASSERT_EQ(layout.rowCount(), N);
        ASSERT_EQ(layout.sliceCount(), (N + 7) / 8);
        for (std::size_t lane = 0; lane < N; ++lane) {
            const std::uint32_t row = layout.rows()[lane];
            EXPECT_EQ(row / 4096, lane / 4096);
            EXPECT_EQ(layout.lanes()[row], lane);
            EXPECT_EQ(layout.lengths()[lane], lengths[row]);
            if (lane % 4096 != 0) {
                const std::uint32_t before = layout.rows()[lane - 1];
                EXPECT_TRUE(lengths[before] > lengths[row] ||
                            (lengths[before] == lengths[row] && before < row));
            }
        }
        for (std::size_t lane = N; lane < layout.sliceCount() * kSliceRows; ++lane) {
            EXPECT_EQ(layout.rows()[lane], kNoRow);
            EXPECT_EQ(layout.lengths()[lane], 0U);
        }
    }
}

TEST(SliceLayout, GivesEverySliceTheStepsOfItsLongestRow) {
    const std::vector<std::uint32_t> lengths = lengths_of(5000);
    const SliceLayout layout(lengths);
    std::size_t steps = 0;
    for (std::size_t slice = 0; slice < layout.sliceCount(); ++slice) {
        EXPECT_EQ(layout.starts()[slice], steps);
        EXPECT_EQ(layout.firstOf(slice * 8 + 3), steps * 8 + 3);
        steps += layout.lengths()[slice * 8];
    }
    EXPECT_EQ(layout.storedCount(), steps * 8);
}

}  // namespace
}  // namespace ovik
