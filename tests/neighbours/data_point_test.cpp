#include "neighbours/data_point.h"

#include <utility>

#include <gtest/gtest.h>

namespace ovik {
namespace {

const double kPlace[] = {1.0, 2.0, 3.0};

void expect_place(const DataPoint<double>& point) {
    EXPECT_EQ(point.index, 7);
    ASSERT_EQ(point.dimension, 3);
    for (int d = 0; d < 3; ++d) {
        EXPECT_EQ(point.coordinates[d], kPlace[d]);
    }
}

TEST(DataPoint, CopiesItsCoordinates) {
    const DataPoint<double> point(3, 7, kPlace);
    EXPECT_NE(point.coordinates, kPlace);
    const DataPoint<double> copy(point);  // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_NE(copy.coordinates, point.coordinates);
    expect_place(copy);
}

TEST(DataPoint, IsAPrototypeByDefault) {
    const DataPoint<double> point;
    EXPECT_EQ(point.index, -1);
    EXPECT_EQ(point.dimension, 0);
    EXPECT_EQ(point.coordinates, nullptr);
}

TEST(DataPoint, TakesOverDimensionAndIndexWhenAssigned) {
    const DataPoint<double> point(3, 7, kPlace);
    DataPoint<double> other(1, -1, kPlace);
    other = point;
    expect_place(other);
    EXPECT_NE(other.coordinates, point.coordinates);
}

TEST(DataPoint, SurvivesAssignmentToItself) {
    DataPoint<double> point(3, 7, kPlace);
    const DataPoint<double>& same = point;
    point = same;
    expect_place(point);
}

TEST(DataPoint, MovesWithoutACopy) {
    DataPoint<double> point(3, 7, kPlace);
    const double* const block = point.coordinates;
    DataPoint<double> moved(std::move(point));
    EXPECT_EQ(moved.coordinates, block);
    DataPoint<double> assigned;
    assigned = std::move(moved);
    EXPECT_EQ(assigned.coordinates, block);
    expect_place(assigned);
}

}  // namespace
}  // namespace ovik
