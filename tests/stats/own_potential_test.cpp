#include "stats/own_potential.h"

#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "stats/mesh_potential.h"

#include "tests/plain/plain_own_potential.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 19;
constexpr std::size_t kColumns = 16;

/// What is left at a point of its own charge on a mesh.
struct Rest {
    double potential;
    double force[2];
};

Rest rest_of(double x, double y, double cells_per_unit) {
    const double scale = std::ldexp(1.0, 37);
    const MeshPoints& kernels = mesh_points(instruction_set());
    const MeshPoint point{x, y, 0};
    MeshPotential potential;
    potential.lay(kRows, kColumns, cells_per_unit, scale);
    const std::size_t stride = potential.stride();
    std::vector<std::int64_t> charges(kRows * stride, 0);
    kernels.spread(&point, 1, scale, 0, stride, charges.data());
    for (std::size_t i = 0; i < charges.size(); ++i) {
        potential.field()[i] = static_cast<double>(charges[i]);
    }
    potential.solve();
    const MeshField field{
        potential.field(), stride, own_potential(cells_per_unit), -0.5 * cells_per_unit};
    Rest rest{};
    kernels.gather(&point, 1, field, rest.force, &rest.potential);
    return rest;
}

TEST(OwnPotential, IsThatOfAPointsChargeAtThePoint) {
    for (const double cells_per_unit : {3.0, 6.0, 48.0, 384.0}) {
        for (const double x : {0.0, 0.05, 0.25, 0.5, 0.8, 0.999}) {
            for (const double y : {0.0, 0.1, 0.5, 0.7}) {
                // 0.0013 and 0.002 without it, with three cells to a unit.
                const Rest rest = rest_of(4.0 + x, 7.0 + y, cells_per_unit);
                EXPECT_NEAR(rest.potential, 0.0, 2.3e-6) << cells_per_unit << ' ' << x << ' ' << y;
                EXPECT_NEAR(rest.force[0], 0.0, 2e-5) << cells_per_unit << ' ' << x << ' ' << y;
                EXPECT_NEAR(rest.force[1], 0.0, 2e-5) << cells_per_unit << ' ' << x << ' ' << y;
            }
        }
    }
}

TEST(OwnPotential, IsThatOfThePlainProgram) {
    for (double cells_per_unit = 3.0; cells_per_unit <= 384.0; cells_per_unit *= 2.0) {
        const OwnPotential own = own_potential(cells_per_unit);
        EXPECT_EQ(std::vector<double>(own.terms, own.terms + kOwnTerms),
                  plain::own_terms(cells_per_unit));
    }
}

TEST(OwnPotential, IsOneOnACell) {
    for (double cells_per_unit = 3.0; cells_per_unit <= 384.0; cells_per_unit *= 2.0) {
        const OwnPotential own = own_potential(cells_per_unit);
        double value = 0.0;
        for (std::size_t i = kOwnTerms; i-- > 0;) {
            value = value * 0.25 + own.terms[i];
        }
        EXPECT_NEAR(2.0 * value, 1.0, 2.3e-6) << cells_per_unit;
    }
}

}  // namespace
}  // namespace ovik
