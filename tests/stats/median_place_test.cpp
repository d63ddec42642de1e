#include "stats/median_place.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(FindPlacedNeighbours, TakesTheNearestOfThoseThatAreLookedAt) {
    const NeighbourGraph graph{2, 4, {1, 5, 6, 7, 0, 5, 6, 7}, {}};
    const auto is_odd = [](std::uint32_t row) { return row % 2 == 1; };
    std::vector<std::uint32_t> placed{9};
    find_placed_neighbours(graph, 0, 99, is_odd, placed);
    EXPECT_THAT(placed, ElementsAre(1, 5, 7));
    find_placed_neighbours(graph, 1, 3, is_odd, placed);
    EXPECT_THAT(placed, ElementsAre(5));
    find_placed_neighbours(graph, 1, 1, is_odd, placed);
    EXPECT_THAT(placed, IsEmpty());
}

TEST(FindPlacedNeighbours, TakesNoMoreThanDecide) {
    NeighbourGraph graph{1, 60, {}, {}};
    for (std::uint32_t n = 1; n <= 60; ++n) {
        graph.neighbours.push_back(n);
    }
    std::vector<std::uint32_t> placed;
    find_placed_neighbours(
        graph, 0, 60, [](std::uint32_t row) { return row > 10; }, placed);
    EXPECT_EQ(placed.size(), kPlacingNeighbours);
    EXPECT_EQ(placed.front(), 11U);
}

TEST(WriteMedianPlace, TakesCoordinateByCoordinate) {
    const std::vector<double> places{1, 40, 2, 30, 9, 10, 4, 20};
    std::vector<double> values;
    std::vector<double> place(2);
    const MatrixView<const double> view{places.data(), 4, 2};
    write_median_place(view, std::vector<std::uint32_t>{0, 1, 2}, values, place);
    EXPECT_THAT(place, ElementsAre(2, 30));
    write_median_place(view, std::vector<std::uint32_t>{3, 1, 2, 0}, values, place);
    EXPECT_THAT(place, ElementsAre(3, 25));
}

}  // namespace
}  // namespace ovik
