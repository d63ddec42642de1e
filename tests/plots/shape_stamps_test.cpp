#include "plots/shape_stamps.h"

#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

std::vector<float> stamp_of(const PointShape& shape, double radius, double x, double y) {
    const ShapeStamps stamps(shape, radius);
    const auto side = static_cast<std::size_t>(2 * stamps.reach() + 1);
    const float* const first = stamps.stamp(x, y);
    return {first, first + side * side};
}

double sum_of(const std::vector<float>& stamp) {
    return std::accumulate(stamp.begin(), stamp.end(), 0.0);
}

TEST(ShapeStamps, CoverAsMuchAsTheShapeWhereverItsMiddleIs) {
    constexpr double kPi = 3.141592653589793;
    for (const double at : {0.0, 0.3, 0.99}) {
        EXPECT_NEAR(sum_of(stamp_of(point_shapes()[0], 5.0, at, 1 - at - 0.01)), 25 * kPi, 0.5);
        // A side of the square is 13 of 15 parts of the circle's width, and 0.9 times that.
        const double side = 10.0 * 13 / 15 * 0.9;
        EXPECT_NEAR(sum_of(stamp_of(point_shapes()[2], 5.0, at, at)), side * side, 2.0);
        EXPECT_NEAR(sum_of(stamp_of(point_shapes()[0], 0.3, at, at)), 0.09 * kPi, 0.06);
    }
}

TEST(ShapeStamps, HaveThePagesShapes) {
    // Upwards, a triangle is narrow; the other one is its mirror image.
    for (const auto& [shape, upper_is_less] : {std::pair{1U, true}, std::pair{4U, false}}) {
        const std::vector<float> stamp = stamp_of(point_shapes()[shape], 6.0, 0.5, 0.5);
        const double upper = std::accumulate(
            stamp.begin(), stamp.begin() + static_cast<long>(stamp.size() / 2), 0.0);
        EXPECT_EQ(upper < sum_of(stamp) / 2, upper_is_less) << shape;
    }
    for (const PointShape& shape : point_shapes()) {
        const std::vector<float> stamp = stamp_of(shape, 6.0, 0.5, 0.5);
        EXPECT_EQ(stamp[stamp.size() / 2], 1.0F) << shape.name;
        EXPECT_LT(stamp.front(), 0.2F) << shape.name;
        EXPECT_GT(sum_of(stamp), 50.0) << shape.name;
        EXPECT_LT(sum_of(stamp), 130.0) << shape.name;
    }
}

TEST(ShapeStamps, FollowTheMiddle) {
    const auto weight_of_left = [](double x) {
        const std::vector<float> stamp = stamp_of(point_shapes()[0], 2.0, x, 0.5);
        const auto side = static_cast<std::size_t>(std::lround(std::sqrt(stamp.size())));
        double left = 0.0;
        for (std::size_t n = 0; n < stamp.size(); ++n) {
            left += n % side < side / 2 ? static_cast<double>(stamp[n]) : 0.0;
        }
        return left;
    };
    EXPECT_GT(weight_of_left(0.1), weight_of_left(0.4) + 0.5);
    EXPECT_GT(weight_of_left(0.4), weight_of_left(0.9) + 0.5);
}

}  // namespace
}  // namespace ovik
