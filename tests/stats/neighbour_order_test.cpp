#include "stats/neighbour_order.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

std::vector<std::uint32_t> order_of(const std::vector<std::uint32_t>& neighbours,
                                    std::size_t count) {
    const std::size_t N = count == 0 ? 3 : neighbours.size() / count;
    const auto order = neighbour_order(neighbours.data(), N, count);
    return {order.get(), order.get() + N};
}

/// Rows of some groups, dealt out in turns; each has the next rows of its group for neighbours.
std::vector<std::uint32_t> groups_in_turns(std::size_t groups,
                                           std::size_t rows,
                                           std::size_t count) {
    std::vector<std::uint32_t> neighbours;
    for (std::size_t n = 0; n < groups * rows; ++n) {
        for (std::size_t k = 1; k <= count; ++k) {
            const std::size_t place = (n / groups + k) % rows;
            neighbours.push_back(static_cast<std::uint32_t>(place * groups + n % groups));
        }
    }
    return neighbours;
}

void expect_every_row_once(std::vector<std::uint32_t> order) {
    std::sort(order.begin(), order.end());
    for (std::uint32_t n = 0; n < order.size(); ++n) {
        ASSERT_EQ(order[n], n);
    }
}

TEST(NeighbourOrder, HasEveryRowOnce) {
    expect_every_row_once(order_of({}, 0));
    // More rows than one walk visits.
    expect_every_row_once(order_of(groups_in_turns(3, 5000, 4), 4));
    // Rows that have but themselves.
    expect_every_row_once(order_of({0, 0, 1, 1, 2, 2}, 2));
}

TEST(NeighbourOrder, PutsRowsOfAGroupSideBySide) {
    constexpr std::size_t kGroups = 5;
    const std::vector<std::uint32_t> order = order_of(groups_in_turns(kGroups, 1000, 6), 6);
    for (std::size_t place = 0; place < order.size(); ++place) {
        EXPECT_EQ(order[place] % kGroups, place / 1000) << place;
    }
}

TEST(NeighbourOrder, WalksAlongTheNeighboursBreadthFirst) {
    //    0 -> 3, 1;  3 -> 5, 4;  1 -> 2, 0;  the others go back.
    const std::vector<std::uint32_t> neighbours{3, 1, 2, 0, 0, 1, 5, 4, 0, 3, 0, 3};
    EXPECT_EQ(order_of(neighbours, 2), (std::vector<std::uint32_t>{0, 3, 1, 5, 4, 2}));
}

TEST(NeighbourOrder, PutsRowsThatNobodyIsNearBesideTheirNearest) {
    // Two rings of 4 and 5 rows; the last two rows are nobody's neighbours.
    const std::vector<std::uint32_t> neighbours{1, 2, 3, 0, 5, 6, 7, 8, 4, 2, 6};
    EXPECT_EQ(order_of(neighbours, 1),
              (std::vector<std::uint32_t>{0, 1, 2, 3, 9, 4, 5, 6, 7, 8, 10}));
}

TEST(NeighbourOrder, GoesOnNearWhereAWalkHasEnded) {
    // One long ring behind a short one: its parts follow one another.
    constexpr std::uint32_t kRing = 10000;
    std::vector<std::uint32_t> neighbours;
    for (std::uint32_t n = 0; n < kRing; ++n) {
        neighbours.push_back((n + 7) % kRing);
    }
    const std::vector<std::uint32_t> order = order_of(neighbours, 1);
    for (std::uint32_t place = 0; place < kRing; ++place) {
        EXPECT_EQ(order[place], place * 7 % kRing);
    }
}

}  // namespace
}  // namespace ovik
