#include "stats/kernels/mesh_points.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

constexpr std::size_t kStride = 24;
constexpr std::size_t kRows = 17;

class MeshPointsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const MeshPoints& kernels = mesh_points(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         MeshPointsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

/// Points within the mesh, some of them on cells.
std::vector<MeshPoint> some_points() {
    std::vector<MeshPoint> points{{0.0, 0.0, 0}, {16.0, 11.0, 1}, {3.0, 2.5, 2}};
    const std::vector<double> values = test::random_values(200, 8);
    for (std::size_t i = 0; i < values.size(); i += 2) {
        const auto within = [](double value, double width) {
            return width * (value - std::floor(value));
        };
        points.push_back({within(values[i], 16.99), within(values[i + 1], 11.99), points.size()});
    }
    return points;
}

TEST_P(MeshPointsTest, SpreadTheSplineAroundAPoint) {
    const double scale = std::ldexp(1.0, 30);
    for (const MeshPoint& point : some_points()) {
        std::vector<std::int64_t> cells(kRows * kStride, 0);
        kernels.spread(&point, 1, scale, 0, kStride, cells.data());
        // The B-spline by its truncated powers, at the distance from the first cell.
        const auto spline = [](double u) {
            const double signs[] = {1.0, -6.0, 15.0, -20.0, 15.0, -6.0, 1.0};
            double sum = 0.0;
            for (int i = 0; i <= 6; ++i) {
                sum += u > i ? signs[i] * std::pow(u - i, 5) : 0.0;
            }
            return sum;
        };
        std::int64_t sum = 0;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const double u = point.x - static_cast<double>(i % kStride) + 5.0;
            const double v = point.y - static_cast<double>(i / kStride) + 5.0;
            const bool is_covered = u > 0.0 && u < 6.0 && v > 0.0 && v < 6.0;
            const double expected = is_covered ? spline(u) * spline(v) : 0.0;
            ASSERT_NEAR(static_cast<double>(cells[i]) / scale, expected, 2e-8) << point.x;
            sum += cells[i];
        }
        EXPECT_NEAR(static_cast<double>(sum), 14400.0 * scale, 18.0);
    }
}

TEST_P(MeshPointsTest, SpreadFromAnotherRowAndBesideWhatIsThere) {
    const MeshPoint point{5.25, 9.75, 0};
    std::vector<std::int64_t> all(kRows * kStride, 5);
    kernels.spread(&point, 1, 1024.0, 0, kStride, all.data());
    std::vector<std::int64_t> lower((kRows - 8) * kStride, 5);
    kernels.spread(&point, 1, 1024.0, 8, kStride, lower.data());
    EXPECT_EQ(std::vector<std::int64_t>(all.begin() + 8 * kStride, all.end()), lower);
}

/// Without a factor of the forces, and an own potential.
MeshField field_of(const std::vector<double>& cells) {
    return {cells.data(), kStride, {}, 1.0};
}

struct Readings {
    std::vector<double> forces;
    std::vector<double> z_terms;

    bool operator==(const Readings&) const = default;
};

Readings readings_of(const MeshPoints& kernels,
                     const std::vector<MeshPoint>& points,
                     const MeshField& field) {
    Readings readings{std::vector<double>(2 * points.size()), std::vector<double>(points.size())};
    kernels.gather(
        points.data(), points.size(), field, readings.forces.data(), readings.z_terms.data());
    return readings;
}

TEST_P(MeshPointsTest, ReadPolynomialsAndTheirSlopesExactly) {
    // The spline's middle lies two cells behind its first one.
    std::vector<double> cells(kRows * kStride);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const double x = static_cast<double>(i % kStride) - 2.0;
        const double y = static_cast<double>(i / kStride) - 2.0;
        cells[i] = (3.0 + 0.5 * x - 0.25 * y + 0.125 * x * y) / 14400.0;
    }
    const std::vector<MeshPoint> points = some_points();
    MeshField field = field_of(cells);
    field.force_factor = -1.5;
    const Readings readings = readings_of(kernels, points, field);
    for (const MeshPoint& point : points) {
        const std::size_t n = point.index;
        EXPECT_NEAR(readings.forces[2 * n], -1.5 * (0.5 + 0.125 * point.y), 1e-12);
        EXPECT_NEAR(readings.forces[2 * n + 1], -1.5 * (-0.25 + 0.125 * point.x), 1e-12);
        EXPECT_NEAR(readings.z_terms[n],
                    3.0 + 0.5 * point.x - 0.25 * point.y + 0.125 * point.x * point.y,
                    1e-12);
    }
}

TEST_P(MeshPointsTest, TakeOffTheOwnPotentialAtThePlaceBetweenCells) {
    const std::vector<double> cells(kRows * kStride, 0.0);
    MeshField field = field_of(cells);
    field.own = {{3.0, -2.0, 5.0, 1.0, -7.0, 4.0}, {-2.0, 10.0, 3.0, -28.0, 20.0}};
    const std::vector<MeshPoint> points = some_points();
    const Readings readings = readings_of(kernels, points, field);
    const auto own = [&](double place) {
        const double s = std::pow(place - std::floor(place) - 0.5, 2);
        double sum = 0.0;
        for (std::size_t i = 0; i < kOwnTerms; ++i) {
            sum += field.own.terms[i] * std::pow(s, static_cast<double>(i));
        }
        return sum;
    };
    // Half of the difference over a step, within a cell.
    const auto half_slope = [&](double place) {
        constexpr double kStep = 1e-6;
        const double inner = std::clamp(place - std::floor(place), kStep, 1.0 - kStep);
        return (own(inner + 0.999 * kStep) - own(inner - 0.999 * kStep)) / (4.0 * 0.999 * kStep);
    };
    for (const MeshPoint& point : points) {
        const std::size_t n = point.index;
        EXPECT_NEAR(readings.z_terms[n], -(own(point.x) + own(point.y)), 1e-12);
        EXPECT_NEAR(readings.forces[2 * n], -half_slope(point.x), 1e-5);
        EXPECT_NEAR(readings.forces[2 * n + 1], -half_slope(point.y), 1e-5);
    }
}

TEST_P(MeshPointsTest, GiveTheSameBytesAsScalarCode) {
    const MeshPoints& scalar = mesh_points(InstructionSet::Scalar);
    const std::vector<MeshPoint> points = some_points();
    const std::vector<double> values = test::random_values(kRows * kStride, 9);
    MeshField field = field_of(values);
    field.own = {{0.4, 0.3, -0.2, 0.7, 0.1, 0.6}, {0.9, -0.1, 0.2, 0.3, 0.8}};
    field.force_factor = 0.7;
    const auto charges_of = [&](const MeshPoints& some_kernels) {
        std::vector<std::int64_t> cells(kRows * kStride, 0);
        some_kernels.spread(
            points.data(), points.size(), std::ldexp(1.0, 37), 0, kStride, cells.data());
        return cells;
    };
    EXPECT_EQ(charges_of(kernels), charges_of(scalar));
    EXPECT_EQ(readings_of(kernels, points, field), readings_of(scalar, points, field));
}

}  // namespace
}  // namespace ovik
