#include "neighbours/kernels/grid_keys.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class GridKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const GridKernels& kernels = grid_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         GridKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

/// The bits of the cells of a point, interleaved one by one.
std::uint64_t plain_bits(const double* point, const PlaneGrid& grid) {
    std::uint32_t cells[2] = {};
    for (std::size_t d = 0; d < 2; ++d) {
        if (point[d] <= grid.low[d] || grid.side == 0.0) {
            continue;
        }
        const double cell = (point[d] - grid.low[d]) / grid.side * 4294967296.0;
        cells[d] = cell < 4294967295.0 ? static_cast<std::uint32_t>(cell) : 4294967295U;
    }
    std::uint64_t bits = 0;
    for (unsigned int bit = 32; bit-- > 0;) {
        bits = bits << 2U | (cells[0] >> bit & 1U) << 1U | (cells[1] >> bit & 1U);
    }
    return bits;
}

void expect_plain_keys(const GridKernels& kernels,
                       const std::vector<double>& points,
                       std::vector<std::uint32_t> rows,
                       const PlaneGrid& grid) {
    std::vector<GridKey> keys(rows.size() + 1, {7, 7});
    kernels.keys(points.data(), rows.data(), rows.size(), grid, keys.data());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(keys[i].row, rows[i]);
        ASSERT_EQ(keys[i].bits, plain_bits(points.data() + 2 * std::size_t{rows[i]}, grid));
    }
    EXPECT_EQ(keys.back().row, 7U);
}

TEST_P(GridKernelsTest, GiveTheKeysOfAnyRows) {
    const PlaneGrid grid{{-1.25, -0.5}, 2.5};
    for (std::size_t N = 0; N <= 67; ++N) {
        const std::vector<double> points = test::random_values(2 * N, 61);
        std::vector<std::uint32_t> rows(N);
        std::iota(rows.rbegin(), rows.rend(), 0U);
        expect_plain_keys(kernels, points, rows, grid);
    }
}

TEST_P(GridKernelsTest, PutWhatLiesBeyondTheGridIntoItsOutermostCells) {
    const std::vector<double> odd = {NAN,
                                     HUGE_VAL,
                                     -HUGE_VAL,
                                     DBL_MAX,
                                     -DBL_MAX,
                                     0.0,
                                     -0.0,
                                     DBL_MIN,
                                     1.0,
                                     std::nextafter(1.0, 0)};
    std::vector<double> points;
    for (const double x : odd) {
        for (const double y : odd) {
            points.insert(points.end(), {x, y});
        }
    }
    std::vector<std::uint32_t> rows(points.size() / 2);
    std::iota(rows.begin(), rows.end(), 0U);
    for (const double side : {0.0, DBL_TRUE_MIN, 1.0, DBL_MAX}) {
        for (const double low : {-DBL_MAX, -1.0, 0.0, DBL_MAX}) {
            expect_plain_keys(kernels, points, rows, {{low, 0.0}, side});
        }
    }
}

TEST_P(GridKernelsTest, PutCoordinatesNextToALineOfTheGridIntoTheirOwnCells) {
    std::vector<double> points;
    for (double line = 1.0; line < 4294967296.0; line = 3.0 * line - 1.0) {
        points.insert(points.end(), {line, std::nextafter(line, 0.0)});
    }
    std::vector<std::uint32_t> rows(points.size() / 2);
    std::iota(rows.begin(), rows.end(), 0U);
    expect_plain_keys(kernels, points, rows, {{0.0, 0.0}, 4294967296.0});
}

TEST_P(GridKernelsTest, BoundTheCoordinatesOfEveryNumberOfPoints) {
    for (std::size_t N = 1; N <= 67; ++N) {
        const std::vector<double> points = test::random_values(2 * N, 62);
        double low[2];
        double high[2];
        ASSERT_TRUE(kernels.bounds(points.data(), N, low, high));
        for (std::size_t d = 0; d < 2; ++d) {
            std::vector<double> column;
            for (std::size_t n = 0; n < N; ++n) {
                column.push_back(points[2 * n + d]);
            }
            EXPECT_EQ(low[d], *std::min_element(column.begin(), column.end()));
            EXPECT_EQ(high[d], *std::max_element(column.begin(), column.end()));
        }
    }
}

TEST_P(GridKernelsTest, TellOfACoordinateThatIsNotFinite) {
    constexpr std::size_t kCount = 21;
    double low[2];
    double high[2];
    for (const double odd : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        for (std::size_t i = 0; i < 2 * kCount; ++i) {
            std::vector<double> points = test::random_values(2 * kCount, 63);
            points[i] = odd;
            EXPECT_FALSE(kernels.bounds(points.data(), kCount, low, high));
        }
    }
    const std::vector<double> extreme(2 * kCount, -DBL_MAX);
    EXPECT_TRUE(kernels.bounds(extreme.data(), kCount, low, high));
    EXPECT_EQ(low[1], -DBL_MAX);
    EXPECT_EQ(high[0], -DBL_MAX);
}

}  // namespace
}  // namespace ovik
