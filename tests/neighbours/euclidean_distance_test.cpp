#include "neighbours/euclidean_distance.h"

#include <cmath>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(EuclideanDistance, TakesTheSquareRoot) {
    const double a[] = {0.0, 0.0};
    const double b[] = {3.0, -4.0};
    EXPECT_EQ(euclidean_distance({2, 0, a}, {2, 1, b}), 5.0);
}

TEST(EuclideanDistance, IsZeroForEqualPointsAndForNoCoordinates) {
    const double a[] = {1.5, 2.5};
    EXPECT_EQ(euclidean_distance({2, 0, a}, {2, 1, a}), 0.0);
    EXPECT_EQ(euclidean_distance({0, 0, a}, {0, 1, a}), 0.0);
}

TEST(EuclideanDistance, AddsSquaresInCoordinateOrder) {
    // 1e-16 is lost when added to 1, but two of them added first are not.
    const double zero[] = {0.0, 0.0, 0.0};
    const double large_first[] = {1.0, 1e-8, 1e-8};
    const double small_first[] = {1e-8, 1e-8, 1.0};
    EXPECT_EQ(euclidean_distance({3, 0, zero}, {3, 1, large_first}), 1.0);
    const double sum = (1e-8 * 1e-8 + 1e-8 * 1e-8) + 1.0;
    EXPECT_EQ(euclidean_distance({3, 0, zero}, {3, 1, small_first}), std::sqrt(sum));
}

}  // namespace
}  // namespace ovik
