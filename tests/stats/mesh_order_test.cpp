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
    const MeshGrid grid = mesh_grid(map_box(Y.data(), kCount), kCount);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        MeshOrder order;
        order.sort(Y.data(), kCount, grid);
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

TEST(MeshOrder, OfNoPointsIsEmpty) {
    MeshOrder order;
    order.sort(nullptr, 0, mesh_grid(map_box(nullptr, 0), 0));
    EXPECT_EQ(order.bands(), 1U);
    EXPECT_EQ(order.band(0).size(), 0U);
}

}  // namespace
}  // namespace ovik
