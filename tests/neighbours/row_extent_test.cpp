#include "neighbours/row_extent.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

std::optional<double> extent_of(const std::vector<double>& points, std::size_t dims) {
    return packable_extent(points.data(), points.size() / dims, dims, euclidean_metric());
}

TEST(RowExtent, IsAtLeastTheLongestDistance) {
    const std::vector<double> points = test::random_values(200 * 4, 3);
    const double extent = extent_of(points, 4).value();
    double longest = 0.0;
    for (std::size_t a = 0; a < 200; ++a) {
        for (std::size_t b = 0; b < 200; ++b) {
            longest =
                std::max(longest, euclidean_metric().distance(&points[a * 4], &points[b * 4], 4));
        }
    }
    EXPECT_GE(extent, longest);
    EXPECT_LE(extent, 2.0 * longest);
}

TEST(RowExtent, IsNoneWhereSinglePrecisionCannotCompare) {
    EXPECT_FALSE(extent_of({}, 3));
    EXPECT_FALSE(extent_of(std::vector<double>(12, 1.0), 3));
    EXPECT_FALSE(extent_of({0.0, 1e151}, 1));
    EXPECT_FALSE(extent_of({0.0, 1e-101}, 1));
    EXPECT_FALSE(extent_of({0.0, std::nan(""), 1.0}, 1));
    EXPECT_FALSE(extent_of({0.0, std::numeric_limits<double>::infinity(), 1.0}, 1));
    // Too many values for the bounds of error.
    std::vector<double> wide(2 * 100'000, 0.0);
    wide[0] = 1.0;
    EXPECT_FALSE(extent_of(wide, 100'000));
    EXPECT_TRUE(extent_of({0.0, 1e149}, 1));
}

TEST(RowExtent, ScalesDistancesToAboutOne) {
    for (const double extent : {1e-99, 0.3, 1.0, 7.0, 1e149}) {
        const double scaled = extent * packing_scale(extent);
        EXPECT_GE(scaled, 1.0);
        EXPECT_LT(scaled, 2.0);
        EXPECT_EQ(std::exp2(std::ilogb(packing_scale(extent))), packing_scale(extent));
    }
}

TEST(RowExtent, HasAMarginFarAboveRounding) {
    constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
    EXPECT_GT(tree_margin(50, 3.0), 3.0 * 50 * kEpsilon);
    EXPECT_LT(tree_margin(50, 3.0), 1e-12);
}

}  // namespace
}  // namespace ovik
