#include "stats/mesh_grid.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr MapBox box_of(double width, double height) {
    return {{-1.0, 2.0}, {-1.0 + width, 2.0 + height}, true};
}

TEST(MapBox, HoldsAllPointsForAnyNumberOfThreads) {
    std::vector<double> Y = test::random_values(80'000, 3);
    Y[1234] = -50.0;
    Y[65'433] = 60.0;
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const MapBox box = map_box(Y.data(), Y.size() / 2);
        EXPECT_EQ(box.least[0], -50.0);
        EXPECT_EQ(box.greatest[1], 60.0);
        EXPECT_TRUE(box.is_finite);
    }
    for (const double odd : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        Y[77'777] = odd;
        EXPECT_FALSE(map_box(Y.data(), Y.size() / 2).is_finite);
    }
}

TEST(MeshGrid, HasThreeCellsToAUnitOfAWideMap) {
    const MeshGrid grid = mesh_grid(box_of(50.0, 20.5), 1000);
    EXPECT_EQ(grid.cells_per_unit, 3.0);
    EXPECT_EQ(grid.corner[0], -1.0);
    EXPECT_EQ(grid.corner[1], 2.0);
    EXPECT_EQ(grid.columns, 156U);
    EXPECT_EQ(grid.rows, 67U);
}

TEST(MeshGrid, HasFinerCellsUnderASmallMap) {
    EXPECT_EQ(mesh_grid(box_of(21.4, 21.4), 1000).cells_per_unit, 3.0);
    EXPECT_EQ(mesh_grid(box_of(21.3, 21.3), 1000).cells_per_unit, 6.0);
    EXPECT_EQ(mesh_grid(box_of(0.1, 3.0), 1000).cells_per_unit, 24.0);
    for (const double width : {0.1, 1e-4, 1e-30, 0.0}) {
        const MeshGrid grid = mesh_grid(box_of(width, width), 1000);
        EXPECT_EQ(grid.cells_per_unit, 384.0);
        EXPECT_EQ(grid.columns, 6U + static_cast<std::size_t>(384.0 * width));
    }
}

TEST(MeshGrid, LiesUnderNoPoints) {
    const MeshGrid grid = mesh_grid(map_box(nullptr, 0), 0);
    EXPECT_EQ(grid.columns, 6U);
    EXPECT_EQ(grid.rows, 6U);
}

TEST(MeshGrid, IsRefusedUnderAMapThatHasGrownWithoutBound) {
    EXPECT_EQ(test::refusal_of([] { mesh_grid(box_of(12345.6, 2000.0), 5000); }),
              "the map has grown to 12346 x 2000, too wide for a mesh over 5000 points\n"
              "Give a lower learning rate, or the method barnes-hut, which bears any map.");
    EXPECT_NE(test::refusal_of([] { mesh_grid(box_of(1e308, 1e308), 5000); }), "");
    const double far = std::numeric_limits<double>::max();
    EXPECT_NE(test::refusal_of([&] { mesh_grid({{-far, 0.0}, {far, 0.0}, true}, 5000); }), "");
    // More points bear a wider map.
    EXPECT_EQ(test::refusal_of([] { mesh_grid(box_of(1300.0, 1300.0), 1'000'000); }), "");
    EXPECT_NE(test::refusal_of([] { mesh_grid(box_of(1300.0, 1300.0), 100'000); }), "");
    EXPECT_EQ(test::refusal_of([] { mesh_grid(box_of(600.0, 600.0), 100); }), "");
}

TEST(MeshGrid, IsRefusedUnderWhatIsNoMap) {
    MapBox box = box_of(1.0, 1.0);
    box.is_finite = false;
    EXPECT_NE(test::refusal_of([&] { mesh_grid(box, 10); }).find("no numbers"), std::string::npos);
}

}  // namespace
}  // namespace ovik
