#include "stats/mesh_box.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_far_points.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

void expect_same(const MapBox& box, const double (&least)[2], const double (&greatest)[2]) {
    for (std::size_t d = 0; d < 2; ++d) {
        EXPECT_EQ(box.least[d], least[d]);
        EXPECT_EQ(box.greatest[d], greatest[d]);
    }
}

bool is_of_no_points(const MapBox& box) {
    return box.least[0] > box.greatest[0];
}

TEST(MeshBox, IsThatOfThePlainProgramForAnyNumberOfThreads) {
    for (const double far : {50.0, 300.0, 5000.0}) {
        std::vector<double> Y = test::random_values(80'000, 3, 10.0);
        for (std::size_t i = 0; i < 30; ++i) {
            Y[1001 * i] += far * static_cast<double>(i + 1);
        }
        const plain::Box expected = plain::mesh_box(Y);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            expect_same(mesh_box(Y.data(), Y.size() / 2), expected.least, expected.greatest);
        }
    }
}

TEST(MeshBox, LeavesPointsFarOutOutside) {
    std::vector<double> Y = test::random_values(4000, 3, 10.0);
    Y[70] = 2000.0;
    Y[81] = -3000.0;
    const MapBox box = mesh_box(Y.data(), Y.size() / 2);
    EXPECT_LT(box.greatest[0], 100.0);
    EXPECT_GT(box.least[1], -100.0);
}

TEST(MeshBox, IsThatOfTheMapWhereItIsSmallOrNoPointIsFarOut) {
    for (const double spacing : {1e-4, 0.1, 1.0}) {
        std::vector<double> Y;
        for (int i = 0; i < 200'000; ++i) {
            Y.insert(Y.end(), {spacing * (i % 500), spacing * (i / 500)});
        }
        const MapBox all = map_box(Y.data(), Y.size() / 2);
        expect_same(mesh_box(Y.data(), Y.size() / 2), all.least, all.greatest);
    }
    EXPECT_TRUE(is_of_no_points(mesh_box(nullptr, 0)));
}

TEST(MeshBox, IsOfNoPointsWhereAllPairsCostLess) {
    const std::vector<double> two{0.0, 0.0, 1e5, 1e5};
    EXPECT_TRUE(is_of_no_points(mesh_box(two.data(), 2)));
    const std::vector<double> wide = test::random_values(2 * 9000, 3, 5000.0);
    EXPECT_TRUE(is_of_no_points(mesh_box(wide.data(), 9000)));
    EXPECT_FALSE(is_of_no_points(mesh_box(two.data(), 1)));
    // All pairs of more points cost more than any mesh.
    const std::vector<double> many = test::random_values(2 * 9200, 3, 5000.0);
    EXPECT_FALSE(is_of_no_points(mesh_box(many.data(), 9200)));
}

TEST(MeshBox, IsOneThatIsNotRefusedThoughItCostsMore) {
    constexpr std::size_t kCount = 300'000;
    std::vector<double> Y;
    for (std::size_t i = 0; i < kCount; ++i) {
        Y.insert(Y.end(), {1.2 * static_cast<double>(i % 600), 1.2 * static_cast<double>(i / 600)});
    }
    for (std::size_t i = 0; i < 40; ++i) {
        Y[2 * (7000 * i + 300)] = 925.0;
    }
    ASSERT_GT(mesh_cells(map_box(Y.data(), kCount)), most_mesh_cells(kCount));
    EXPECT_LT(mesh_box(Y.data(), kCount).greatest[0], 800.0);
}

TEST(MeshBox, LeavesWhatIsNoMapToTheGrid) {
    std::vector<double> Y = test::random_values(4000, 3, 10.0);
    Y[7] = std::nan("");
    EXPECT_FALSE(mesh_box(Y.data(), Y.size() / 2).is_finite);
    Y[7] = 1.0;
    Y[0] = -std::numeric_limits<double>::max();
    Y[2] = std::numeric_limits<double>::max();
    EXPECT_EQ(mesh_box(Y.data(), Y.size() / 2).least[0], Y[0]);
}

}  // namespace
}  // namespace ovik
