#include "stats/mesh_charges.h"

#include <cmath>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_mesh.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

TEST(ChargeScale, LeavesNoSumAndNoChargeTooLarge) {
    for (int bits = 0; bits < 40; ++bits) {
        for (const std::size_t N : {std::size_t{1} << bits, (std::size_t{2} << bits) - 1}) {
            const double scale = charge_scale(N);
            EXPECT_EQ(std::ldexp(1.0, std::ilogb(scale)), scale) << N;
            EXPECT_LT(kLargestCharge * scale, std::ldexp(1.0, 50)) << N;
            EXPECT_LT(static_cast<double>(N) * (kLargestCharge * scale + 0.5), std::ldexp(1.0, 62))
                << N;
        }
    }
    EXPECT_THROW(charge_scale(std::size_t{1} << 40U), std::length_error);
}

/// Charges of an embedding, as whole numbers.
struct Charges {
    explicit Charges(const std::vector<double>& Y) {
        const std::size_t N = Y.size() / 2;
        const MapBox box = map_box(Y.data(), N);
        const MeshGrid grid = mesh_grid(box, N);
        stride = (grid.columns + 9) / 8 * 8;
        order.sort(Y.data(), N, box, grid);
        std::vector<double> field(grid.rows * stride);
        charges.spread(order, N, grid.rows, stride, field.data());
        for (std::size_t i = 0; i < field.size(); ++i) {
            sums.push_back(charges.sum(i / stride, i % stride));
            EXPECT_EQ(field[i], static_cast<double>(sums.back()));
        }
    }

    std::size_t stride;
    MeshOrder order;
    MeshCharges charges;
    std::vector<std::int64_t> sums;
};

TEST(MeshCharges, AreThoseOfThePlainProgramForAnyNumberOfThreads) {
    for (const double width : {1e-5, 0.2, 3.0, 12.0}) {
        const std::vector<double> Y = test::random_values(5000, 21, width);
        const std::vector<std::int64_t> expected = plain::mesh_charges(plain::mesh_under(Y), Y);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(Charges(Y).sums, expected) << width << ", " << threads;
        }
    }
}

TEST(MeshCharges, DoNotDependOnTheOrderOfThePoints) {
    const std::vector<double> Y = test::random_values(4000, 22, 10.0);
    std::vector<double> reversed;
    for (std::size_t n = Y.size() / 2; n-- > 0;) {
        reversed.insert(reversed.end(), {Y[2 * n], Y[2 * n + 1]});
    }
    EXPECT_EQ(Charges(reversed).sums, Charges(Y).sums);
}

TEST(MeshCharges, OfManyPointsAtOnePlaceAreSoManyTimesThoseOfOne) {
    // Between both of them the scale is that of their number.
    constexpr std::size_t kCount = 100'000;
    std::vector<double> Y(2 * kCount, 1.0);
    const std::vector<std::int64_t> sums = Charges(Y).sums;
    std::int64_t largest = 0;
    std::int64_t total = 0;
    for (const std::int64_t sum : sums) {
        EXPECT_EQ(sum % static_cast<std::int64_t>(kCount), 0);
        largest = std::max(largest, sum);
        total += sum;
    }
    const double scale = charge_scale(kCount);
    EXPECT_EQ(static_cast<double>(largest), static_cast<double>(kCount) * kLargestCharge * scale);
    EXPECT_EQ(static_cast<double>(total), static_cast<double>(kCount) * 14400.0 * scale);
}

}  // namespace
}  // namespace ovik
