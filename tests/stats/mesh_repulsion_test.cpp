#include "stats/mesh_repulsion.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "stats/mesh_box.h"

#include "tests/plain/plain_mesh.h"
#include "tests/support/all_pairs_repulsion.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/rank_threads.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

struct Forces {
    std::vector<double> forces;
    std::vector<double> z_terms;

    bool operator==(const Forces& other) const {
        return forces == other.forces && z_terms == other.z_terms;
    }
};

/// The forces on an embedding, computed in ranges side by side.
Forces forces_by(Repulsion& repulsion, const std::vector<double>& Y) {
    const std::size_t N = Y.size() / 2;
    Forces result{std::vector<double>(2 * N, 7.0), std::vector<double>(N, 7.0)};
    const std::size_t parts = repulsion.prepare(Y.data());
    for (std::size_t part = 0; part < parts; ++part) {
        repulsion.preparePart(part);
    }
    repulsion.finishPreparation();
    parallel_for(N, 1, [&](std::size_t /*worker*/, IndexRange range) {
        repulsion.compute(range, result.forces.data(), result.z_terms.data());
    });
    return result;
}

Forces mesh_forces(const std::vector<double>& Y) {
    MeshRepulsion repulsion(Y.size() / 2);
    return forces_by(repulsion, Y);
}

/// All pairs of some points with all.
Forces exact_forces(const std::vector<double>& Y, std::size_t sample) {
    const std::size_t N = Y.size() / 2;
    test::AllPairsRepulsion repulsion(N, 2);
    repulsion.prepare(Y.data());
    Forces result{std::vector<double>(2 * N, 0.0), std::vector<double>(N, 0.0)};
    parallel_for_each(sample, 1, [&](std::size_t i) {
        const std::size_t n = i * N / sample;
        repulsion.compute({n, n + 1}, result.forces.data(), result.z_terms.data());
    });
    return result;
}

/// Root mean square error of the forces on a sample of points and error of the normalisation, both
/// relative.
struct Errors {
    double forces;
    double normalisation;
};

Errors errors_of(const std::vector<double>& Y, std::size_t sample) {
    const std::size_t N = Y.size() / 2;
    const Forces actual = mesh_forces(Y);
    const Forces exact = exact_forces(Y, sample);
    double errors = 0.0;
    double squares = 0.0;
    double z_error = 0.0;
    double z = 0.0;
    for (std::size_t i = 0; i < sample; ++i) {
        const std::size_t n = i * N / sample;
        for (const std::size_t k : {2 * n, 2 * n + 1}) {
            errors += std::pow(actual.forces[k] - exact.forces[k], 2);
            squares += std::pow(exact.forces[k], 2);
        }
        z_error += actual.z_terms[n] - exact.z_terms[n];
        z += exact.z_terms[n];
    }
    return {std::sqrt(errors / squares), std::fabs(z_error / z)};
}

/// Points as they lie in a finished map: in round groups, within these evenly.
std::vector<double> map_like(std::size_t N, std::size_t groups, double width, double spacing) {
    std::mt19937 generator(5);
    std::uniform_real_distribution<double> uniform(-0.5, 0.5);
    std::vector<double> Y;
    const std::size_t members = (N + groups - 1) / groups;
    for (std::size_t n = 0; n < N; ++n) {
        if (n % members == 0) {
            Y.insert(Y.end(), {width * uniform(generator), width * uniform(generator)});
            continue;
        }
        // A sunflower's seeds, a little shaken.
        const auto seed = static_cast<double>(n % members);
        const std::size_t centre = n / members * members;
        const double radius = spacing * std::sqrt(seed / 3.14);
        Y.push_back(Y[2 * centre] + radius * std::cos(2.4 * seed) +
                    0.3 * spacing * uniform(generator));
        Y.push_back(Y[2 * centre + 1] + radius * std::sin(2.4 * seed) +
                    0.3 * spacing * uniform(generator));
    }
    return Y;
}

/// A map of which some points have flown off.
std::vector<double> with_far_points(std::vector<double> Y) {
    for (std::size_t i = 0; i < 9; ++i) {
        Y[2 * (37 * i + 5)] = 300.0 * std::cos(static_cast<double>(i));
        Y[2 * (37 * i + 5) + 1] = 400.0 * std::sin(static_cast<double>(i));
    }
    return Y;
}

TEST(MeshRepulsion, IsNearAllPairsOnMapsOfAllDensities) {
    for (const double spacing : {1.0, 0.6, 0.3}) {
        const Errors errors = errors_of(map_like(2500, 15, 60.0, spacing), 2500);
        EXPECT_LT(errors.forces, 0.005) << spacing;
        EXPECT_LT(errors.normalisation, 0.001) << spacing;
    }
    const Errors errors = errors_of(map_like(50'000, 20, 150.0, 0.25), 250);
    EXPECT_LT(errors.forces, 0.001);
    EXPECT_LT(errors.normalisation, 0.0001);
}

TEST(MeshRepulsion, IsNearAllPairsOnMapsThatHaveJustBegun) {
    for (const double spread : {1e-8, 1e-4, 1e-2, 0.3, 2.0}) {
        const Errors errors = errors_of(test::random_values(800, 41, spread), 400);
        EXPECT_LT(errors.forces, 0.001) << spread;
        EXPECT_LT(errors.normalisation, 1e-5) << spread;
    }
}

/// Points that lie far apart: on a square grid, a little shaken.
std::vector<double> sparse_map(double spacing, std::size_t side) {
    std::vector<double> Y = test::random_values(2 * side * side, 43, 0.2 * spacing);
    for (std::size_t n = 0; n < side * side; ++n) {
        Y[2 * n] += spacing * static_cast<double>(n % side);
        Y[2 * n + 1] += spacing * static_cast<double>(n / side);
    }
    return Y;
}

TEST(MeshRepulsion, IsNearAllPairsOnSparseMaps) {
    // Those of 225 points 8 and 16 apart have no mesh; the others have one.
    const struct {
        double spacing;
        std::size_t side;
        bool has_mesh;
    } kMaps[] = {
        {2.0, 15, true}, {4.0, 15, true}, {6.0, 92, true}, {8.0, 15, false}, {16.0, 15, false}};

    for (const auto& [spacing, side, has_mesh] : kMaps) {
        const std::vector<double> Y = sparse_map(spacing, side);
        const MapBox box = mesh_box(Y.data(), side * side);
        ASSERT_EQ(box.least[0] < box.greatest[0], has_mesh) << spacing;
        // With the force of points on themselves errors are 0.8 % to 44 %, and 0.02 % to 0.6 %.
        const Errors errors = errors_of(Y, std::min<std::size_t>(side * side, 600));
        EXPECT_LT(errors.forces, 0.003) << spacing;
        EXPECT_LT(errors.normalisation, 1e-5) << spacing;
    }
}

/// Holds the forces on an embedding to those of the plain program, for any number of threads and
/// instructions.
void expect_plain_forces(const std::vector<double>& Y) {
    const plain::MeshForces expected = plain::mesh_forces(Y);
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            const Forces actual = mesh_forces(Y);
            EXPECT_EQ(actual.forces, expected.forces) << threads;
            EXPECT_EQ(actual.z_terms, expected.z_terms) << threads;
        }
    }
}

TEST(MeshRepulsion, IsThatOfThePlainProgramForAnyNumberOfThreadsAndInstructions) {
    for (const double spread : {1e-4, 0.5, 4.0}) {
        SCOPED_TRACE(spread);
        expect_plain_forces(test::random_values(600, 42, spread));
    }
}

TEST(MeshRepulsion, OfALargeMapIsTheSameForAnyNumberOfThreadsAndInstructions) {
    const std::vector<double> Y = map_like(20'000, 20, 120.0, 0.3);
    const Forces expected = mesh_forces(Y);
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(mesh_forces(Y), expected) << threads;
        }
    }
}

TEST(MeshRepulsion, DoesNotDependOnTheOrderOfThePoints) {
    const std::vector<double> Y = with_far_points(map_like(3000, 7, 60.0, 0.5));
    std::vector<std::size_t> order(Y.size() / 2);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), std::mt19937(3));
    std::vector<double> shuffled;
    for (const std::size_t n : order) {
        shuffled.insert(shuffled.end(), {Y[2 * n], Y[2 * n + 1]});
    }
    const Forces expected = mesh_forces(Y);
    const Forces actual = mesh_forces(shuffled);
    for (std::size_t i = 0; i < order.size(); ++i) {
        const std::size_t n = order[i];
        ASSERT_EQ(actual.forces[2 * i], expected.forces[2 * n]);
        ASSERT_EQ(actual.forces[2 * i + 1], expected.forces[2 * n + 1]);
        ASSERT_EQ(actual.z_terms[i], expected.z_terms[n]);
    }
}

TEST(MeshRepulsion, MovesAlongWithTheMap) {
    // Coordinates of few binary digits, so that the distances stay the same to the last one.
    std::vector<double> Y = map_like(1000, 7, 60.0, 0.5);
    std::vector<double> moved;
    for (double& y : Y) {
        y = std::nearbyint(y * 1048576.0) / 1048576.0;
        moved.push_back(y + 64.0);
    }
    EXPECT_EQ(mesh_forces(moved), mesh_forces(Y));
}

TEST(MeshRepulsion, OfTwoPointsPushesThemApart) {
    for (const double distance : {1e-4, 0.1, 0.5, 1.0, 3.0, 10.0, 40.0}) {
        const Forces actual = mesh_forces({0.3, -0.2, 0.3 + 0.6 * distance, -0.2 + 0.8 * distance});
        const double q = 1.0 / (1.0 + distance * distance);
        // The largest force between two points is 0.32.
        constexpr double kBound = 1e-5;
        EXPECT_NEAR(actual.forces[0], -0.6 * distance * q * q, kBound) << distance;
        EXPECT_NEAR(actual.forces[1], -0.8 * distance * q * q, kBound) << distance;
        EXPECT_NEAR(actual.forces[2], 0.6 * distance * q * q, kBound) << distance;
        EXPECT_NEAR(actual.forces[3], 0.8 * distance * q * q, kBound) << distance;
        EXPECT_NEAR(actual.z_terms[0], q, kBound) << distance;
        EXPECT_NEAR(actual.z_terms[1], q, kBound) << distance;
    }
}

TEST(MeshRepulsion, OfPointsAtOnePlaceIsNone) {
    constexpr std::size_t kCount = 1000;
    const Forces actual = mesh_forces(std::vector<double>(2 * kCount, 3.7));
    for (std::size_t n = 0; n < kCount; ++n) {
        EXPECT_NEAR(actual.forces[2 * n], 0.0, 1e-6);
        EXPECT_NEAR(actual.forces[2 * n + 1], 0.0, 1e-6);
        EXPECT_NEAR(actual.z_terms[n], kCount - 1.0, 1e-6);
    }
}

TEST(MeshRepulsion, OfOneOrNoPointHasNoForces) {
    EXPECT_EQ(mesh_forces({}).forces.size(), 0U);
    const Forces actual = mesh_forces({2.0, 3.0});
    EXPECT_NEAR(actual.forces[0], 0.0, 1e-9);
    EXPECT_NEAR(actual.z_terms[0], 0.0, 1e-9);
}

TEST(MeshRepulsion, OfPointsFarOutIsThatOfThePlainProgram) {
    expect_plain_forces(with_far_points(map_like(1100, 3, 8.0, 0.3)));
}

TEST(MeshRepulsion, IsNearAllPairsWherePointsAreFarOut) {
    std::vector<double> Y = with_far_points(map_like(2500, 15, 60.0, 0.6));
    for (const double farthest : {300.0, 1e6, 1e200}) {
        Y[77] = farthest;
        const Errors errors = errors_of(Y, 2500);
        EXPECT_LT(errors.forces, 0.005) << farthest;
        EXPECT_LT(errors.normalisation, 0.001) << farthest;
    }
}

TEST(MeshRepulsion, OfFewPointsFarFromEachOtherIsThatOfAllPairs) {
    std::vector<double> Y;
    for (int i = 0; i < 225; ++i) {
        Y.insert(Y.end(), {40.0 * (i % 15) + 0.1 * (i % 7), 40.0 * (i / 15) - 0.1 * (i % 5)});
    }
    expect_plain_forces(Y);
    const Errors errors = errors_of(Y, 225);
    EXPECT_LT(errors.forces, 1e-8);
    EXPECT_LT(errors.normalisation, 1e-9);
}

TEST(MeshRepulsion, RefusesAMapWithManyPointsFarOutAndGoesOnWithAnotherMap) {
    std::vector<double> Y = map_like(20'000, 7, 60.0, 0.1);
    const std::vector<double> other = with_far_points(map_like(20'000, 3, 20.0, 0.1));
    MeshRepulsion repulsion(20'000);
    EXPECT_EQ(forces_by(repulsion, Y), mesh_forces(Y));
    for (std::size_t n = 0; n < 200; ++n) {
        Y[2 * n] *= 1e5;
    }
    EXPECT_NE(test::refusal_of([&] { forces_by(repulsion, Y); }).find("too wide for a mesh"),
              std::string::npos);
    EXPECT_EQ(forces_by(repulsion, other), mesh_forces(other));
}

TEST(MeshRepulsion, IsTheSameByRanksThatHaveSomeOfThePointsEach) {
    const std::vector<double> near = map_like(9000, 30, 90.0, 0.4);
    // So wide that all are far points.
    const std::vector<double> wide = test::random_values(2 * 9000, 4, 1e6);
    for (const std::vector<double>& Y : {near, with_far_points(near), wide}) {
        const std::size_t N = Y.size() / 2;
        const Forces expected = mesh_forces(Y);
        for (const std::size_t count : {std::size_t{2}, std::size_t{3}, std::size_t{5}}) {
            Forces shared{std::vector<double>(2 * N), std::vector<double>(N)};
            test::run_ranks(count, [&](Ranks& ranks) {
                const RankRows rows(N, ranks);
                MeshRepulsion repulsion(rows);
                repulsion.prepare(Y.data());
                repulsion.finishPreparation();
                // Each writes what is its own.
                repulsion.compute(
                    {0, rows.own().size()}, shared.forces.data(), shared.z_terms.data());
            });
            EXPECT_EQ(shared, expected) << count << " ranks";
        }
    }
}

}  // namespace
}  // namespace ovik
