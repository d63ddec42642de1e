#include "tools/aligned_maps.h"

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::IsNan;

RunMap map_of(const std::vector<std::string>& names, std::size_t dims, std::vector<double> places) {
    ComparedGenes genes;
    genes.names = names;
    for (const std::string& name : names) {
        genes.functions.push_back("does " + name);
    }
    return {std::make_shared<const ComparedGenes>(std::move(genes)), dims, std::move(places)};
}

std::vector<std::string> numbered_names(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t n = 0; n < count; ++n) {
        names.push_back("G" + std::to_string(n));
    }
    return names;
}

TEST(AlignMaps, LaysEachOntoTheOneWithTheMostRowsByTheirNames) {
    // The second map is the first mirrored, turned by a right angle and doubled, with rows in
    // another order; one row it lacks, and one it has besides.
    const RunMap first = map_of({"A", "B", "C", "D", "E"}, 2, {0, 0, 4, 0, 0, 2, 1, 1, 9, 9});
    const RunMap second = map_of({"X", "D", "C", "B", "A"}, 2, {6, 6, 2, 2, 4, 0, 0, 8, 0, 0});
    const AlignedMaps aligned = align_maps({second, first, second});
    EXPECT_EQ(aligned.reference, 0U);
    const AlignedMaps maps = align_maps({first, second});
    EXPECT_EQ(maps.reference, 0U);
    EXPECT_THAT(maps.genes.names, ElementsAre("A", "B", "C", "D", "E", "X"));
    EXPECT_EQ(maps.genes.functions[5], "does X");
    EXPECT_THAT(maps.maps[0].x, ElementsAre(0, 4, 0, 1, 9, IsNan()));
    EXPECT_FALSE(maps.maps[0].agreement);
    const AlignedMap& laid = maps.maps[1];
    EXPECT_EQ(laid.placed, 5U);
    EXPECT_EQ(laid.shared, 4U);
    ASSERT_TRUE(laid.agreement);
    EXPECT_NEAR(laid.agreement->disparity, 0.0, 1e-14);
    for (std::size_t gene = 0; gene < 4; ++gene) {
        EXPECT_NEAR(laid.x[gene], maps.maps[0].x[gene], 1e-13) << gene;
        EXPECT_NEAR(laid.y[gene], maps.maps[0].y[gene], 1e-13) << gene;
    }
    EXPECT_THAT(laid.x[4], IsNan());
    EXPECT_NEAR(laid.x[5], 3.0, 1e-13);
    EXPECT_NEAR(laid.y[5], 3.0, 1e-13);
}

TEST(AlignMaps, TakesTheLargestForReference) {
    const RunMap small = map_of({"A", "B", "C"}, 2, {0, 0, 1, 0, 0, 3});
    const RunMap large = map_of({"C", "B", "A", "D"}, 2, {0, 3, 1, 0, 0, 0, 5, 5});
    const AlignedMaps maps = align_maps({small, large, large});
    EXPECT_EQ(maps.reference, 1U);
    EXPECT_THAT(maps.genes.names, ElementsAre("C", "B", "A", "D"));
    EXPECT_EQ(maps.maps[0].shared, 3U);
    for (std::size_t gene = 0; gene < 4; ++gene) {
        EXPECT_NEAR(maps.maps[2].x[gene], maps.maps[1].x[gene], 1e-13);
    }
}

TEST(AlignMaps, MatchesEqualNamesInTheirOrder) {
    const RunMap first = map_of({"A", "A", "B", "C"}, 2, {0, 0, 7, 0, 0, 2, 3, 3});
    const RunMap second = map_of({"B", "C", "A", "A", "A"}, 2, {0, 2, 3, 3, 0, 0, 7, 0, 5, 5});
    const AlignedMaps maps = align_maps({second, first});
    EXPECT_THAT(maps.genes.names, ElementsAre("B", "C", "A", "A", "A"));
    EXPECT_EQ(maps.maps[1].shared, 4U);
    EXPECT_NEAR(maps.maps[1].x[2], 0.0, 1e-13);
    EXPECT_NEAR(maps.maps[1].x[3], 7.0, 1e-13);
    EXPECT_THAT(maps.maps[1].x[4], IsNan());
}

TEST(AlignMaps, LeavesMapsWithLittleInCommonAsTheyAre) {
    const RunMap first = map_of({"A", "B", "C"}, 2, {0, 0, 1, 0, 0, 3});
    const RunMap second = map_of({"A", "B", "X"}, 2, {10, 0, 20, 0, 0, 30});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const RunMap third = map_of({"A", "B", "C"}, 2, {10, 0, 20, 0, nan, 30});
    const AlignedMaps maps = align_maps({first, second, third, {}});
    EXPECT_FALSE(maps.maps[1].agreement);
    EXPECT_THAT(maps.maps[1].x, ElementsAre(10, 20, IsNan(), 0));
    EXPECT_EQ(maps.maps[1].shared, 2U);
    EXPECT_FALSE(maps.maps[2].agreement);
    EXPECT_EQ(maps.maps[2].placed, 2U);
    EXPECT_TRUE(maps.maps[3].x.empty());
}

TEST(AlignMaps, TurnsMapsOfMoreDimensionsInAllOfThem) {
    const std::size_t rows = 40;
    const std::vector<double> plane = test::random_values(2 * rows, 5);
    std::vector<double> upright;
    for (std::size_t n = 0; n < rows; ++n) {
        upright.insert(upright.end(), {7.0, plane[2 * n], plane[2 * n + 1]});
    }
    const AlignedMaps maps = align_maps(
        {map_of(numbered_names(rows), 2, plane), map_of(numbered_names(rows), 3, upright)});
    for (std::size_t n = 0; n < rows; ++n) {
        EXPECT_NEAR(maps.maps[1].x[n], plane[2 * n], 1e-12);
        EXPECT_NEAR(maps.maps[1].y[n], plane[2 * n + 1], 1e-12);
    }
}

TEST(AlignMaps, KeepsTheLabelsOfTheReference) {
    ComparedGenes genes;
    genes.names = {"A", "B", "C"};
    genes.label_columns = {{"group", {"x", "y", "x"}, {}}, {"number", {"1", "2", "3"}, {1, 2, 3}}};
    const RunMap labelled{std::make_shared<const ComparedGenes>(genes), 2, {0, 0, 1, 0, 0, 3}};
    const AlignedMaps maps = align_maps({labelled, map_of({"X", "A"}, 2, {0, 0, 1, 1})});
    ASSERT_EQ(maps.genes.label_columns.size(), 2U);
    EXPECT_THAT(maps.genes.label_columns[0].texts, ElementsAre("x", "y", "x", ""));
    EXPECT_THAT(maps.genes.label_columns[1].numbers, ElementsAre(1, 2, 3, IsNan()));
    EXPECT_TRUE(maps.genes.label_columns[0].numbers.empty());
}

TEST(AlignMaps, OfNothingIsNothing) {
    EXPECT_TRUE(align_maps({}).maps.empty());
    EXPECT_EQ(align_maps({{}, {}}).maps.size(), 2U);
    EXPECT_TRUE(align_maps({{}, {}}).genes.names.empty());
}

}  // namespace
}  // namespace ovik::tool
