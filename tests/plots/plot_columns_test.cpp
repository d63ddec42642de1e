#include "plots/plot_columns.h"

#include <array>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/threads.h"

namespace ovik {

namespace {

using testing::ElementsAre;

using ElementTypes = testing::Types<float, double>;

template <typename T>
class PlotColumnsTest : public testing::Test {};

TYPED_TEST_SUITE(PlotColumnsTest, ElementTypes);

TYPED_TEST(PlotColumnsTest, BoundsAllRows) {
    using T = TypeParam;
    const PlotColumns<T> columns({{T(2), T(7)}, {T(-1), T(9)}, {T(5), T(8)}});
    EXPECT_THAT(columns.x, ElementsAre(T(2), T(-1), T(5)));
    EXPECT_THAT(columns.y, ElementsAre(T(7), T(9), T(8)));
    EXPECT_THAT(columns.bounds, ElementsAre(T(-1), T(5), T(7), T(9)));
}

TYPED_TEST(PlotColumnsTest, DoesNotWidenARangeOfZeroWidth) {
    using T = TypeParam;
    const PlotColumns<T> columns({{T(2), T(1)}, {T(2), T(3)}});
    EXPECT_THAT(columns.bounds, ElementsAre(T(2), T(2), T(1), T(3)));
}

TYPED_TEST(PlotColumnsTest, TiesKeepTheEarlierValue) {
    using T = TypeParam;
    const PlotColumns<T> columns({{T(0), -T(0)}, {-T(0), T(0)}});
    EXPECT_FALSE(std::signbit(columns.bounds[0]));
    EXPECT_FALSE(std::signbit(columns.bounds[1]));
    EXPECT_TRUE(std::signbit(columns.bounds[2]));
    EXPECT_TRUE(std::signbit(columns.bounds[3]));
}

TYPED_TEST(PlotColumnsTest, AFirstRowThatIsNoNumberStays) {
    using T = TypeParam;
    const T nan = std::numeric_limits<T>::quiet_NaN();
    const PlotColumns<T> columns({{nan, T(1)}, {T(2), nan}, {T(3), T(5)}});
    EXPECT_TRUE(std::isnan(columns.bounds[0]));
    EXPECT_TRUE(std::isnan(columns.bounds[1]));
    EXPECT_EQ(columns.bounds[2], T(1));
    EXPECT_EQ(columns.bounds[3], T(5));
}

TYPED_TEST(PlotColumnsTest, AreTheSameForAnyNumberOfThreads) {
    using T = TypeParam;
    std::vector<std::array<T, 2>> coordinates(50000);
    for (std::size_t row = 0; row < coordinates.size(); ++row) {
        coordinates[row] = {static_cast<T>((row * 7919) % 50021), static_cast<T>(row % 313)};
    }
    const PlotColumns<T> one(coordinates);
    for (const int threads : {1, 2, 3, 8}) {
        const test::ThreadCount scope(threads);
        const PlotColumns<T> columns(coordinates);
        EXPECT_EQ(columns.x, one.x);
        EXPECT_EQ(columns.y, one.y);
        EXPECT_EQ(columns.bounds, one.bounds);
    }
}

}  // namespace

}  // namespace ovik
