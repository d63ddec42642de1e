#include "stats/mesh_order.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

TEST(MeshOrder, HasEveryPointOnceInTheBandOfItsRow) {
    constexpr std::size_t kCount = 10'000;
    const std::vector<double> Y = test::random_values(2 * kCount, 12, 20.0);
    const MapBox box = map_box(Y.data(), kCount);
    const MeshGrid grid = mesh_grid(box, kCount);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        MeshOrder order;
        order.sort(Y.data(), kCount, box, grid);
        ASSERT_EQ(order.bands(), (grid.rows + kBandRows - 1) / kBandRows);
        std::vector<int> seen(kCount, 0);
        std::size_t next = 0;
        for (std::size_t band = 0; band < order.bands(); ++band) {
            const IndexRange range = order.band(band);
            EXPECT_EQ(range.begin, next);
            next = range.end;
            for (std::size_t i = range.begin; i < range.end; ++i) {
                const MeshPoint& point = order.points()[i];
                ++seen[point.index];
                EXPECT_EQ(static_cast<std::size_t>(point.y) / kBandRows, band);
                EXPECT_EQ(point.x, grid.cells_per_unit * (Y[2 * point.index] - grid.corner[0]));
                EXPECT_LE(static_cast<std::size_t>(point.x) + kSplineOrder, grid.columns);
                EXPECT_LE(static_cast<std::size_t>(point.y) + kSplineOrder, grid.rows);
            }
        }
        EXPECT_EQ(next, kCount);
        EXPECT_EQ(seen, std::vector<int>(kCount, 1));
    }
}

TEST(MeshOrder, LeavesOutPointsOutsideTheBox) {
    const std::vector<double> Y{0.0, 0.0, 9.0, 1.0, 2.0, -7.0, 3.0, 4.0, 1.0, 2.0};
    const MapBox box = {{0.0, 0.0}, {3.0, 4.0}, true};
    MeshOrder order;
    order.sort(Y.data(), 5, box, mesh_grid(box, 5));
    ASSERT_EQ(order.size(), 3U);
    std::size_t sum = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        sum += order.points()[i].index;
    }
    EXPECT_EQ(sum, 0U + 3U + 4U);
}

TEST(MeshOrder, OfNoPointsIsEmpty) {
    MeshOrder order;
    const MapBox box = map_box(nullptr, 0);
    order.sort(nullptr, 0, box, mesh_grid(box, 0));
    EXPECT_EQ(order.bands(), 1U);
    EXPECT_EQ(order.band(0).size(), 0U);
}

}  // namespace
}  // namespace ovik
