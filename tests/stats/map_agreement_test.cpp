#include "stats/map_agreement.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/plain/plain_agreement.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using Map = std::vector<double>;

MatrixView<const double> view(const Map& map, std::size_t dims) {
    return {map.data(), map.size() / dims, dims};
}

MapAgreement agreement(const Map& A, const Map& B, std::size_t dims = 2, std::size_t k = 10) {
    return map_agreement(view(A, dims), view(B, dims), k);
}

/// The second map made of the first with some noise.
Map disturbed(Map map, double noise) {
    const Map deviates = test::random_values(map.size(), 5, noise);
    for (std::size_t i = 0; i < map.size(); ++i) {
        map[i] += deviates[i];
    }
    return map;
}

/// Turned by an angle in the first two dimensions, mirrored, scaled and moved.
Map moved(Map map, std::size_t dims, double angle) {
    for (std::size_t n = 0; n < map.size(); n += dims) {
        const double x = map[n];
        const double y = map[n + 1];
        map[n] = std::cos(angle) * x - std::sin(angle) * y;
        map[n + 1] = -(std::sin(angle) * x + std::cos(angle) * y);
        for (std::size_t d = 0; d < dims; ++d) {
            map[n + d] = 3.5 * map[n + d] + 17.0;
        }
    }
    return map;
}

TEST(MapAgreement, EqualsThePlainProgram) {
    const Map A = test::random_values(600, 1);
    for (const double noise : {0.01, 0.3, 3.0, 300.0}) {
        const Map B = disturbed(A, noise);
        const MapAgreement found = agreement(A, B);
        EXPECT_NEAR(found.disparity, plain::plane_disparity(A, B), 1e-13) << noise;
        EXPECT_EQ(found.shared_neighbours, plain::shared_neighbours(A, B, 2, 10)) << noise;
        EXPECT_EQ(found.neighbours, 10U);
    }
}

TEST(MapAgreement, OfSeveralDimensionsCountsTheNeighboursOfThePlainProgram) {
    const Map A = test::random_values(2000, 2);
    const Map B = disturbed(A, 0.5);
    EXPECT_EQ(agreement(A, B, 5, 7).shared_neighbours, plain::shared_neighbours(A, B, 5, 7));
}

TEST(MapNeighbours, AreComparedWithThoseOnManyMaps) {
    const Map A = test::random_values(400, 2);
    const MapNeighbours own(view(A, 2), 7);
    for (const double noise : {0.01, 0.3, 3.0}) {
        const Map B = disturbed(A, noise);
        const std::vector<double> shared = own.sharedWith(view(B, 2));
        double sum = 0.0;
        for (const double share : shared) {
            sum += share;
        }
        EXPECT_EQ(shared.size(), 200U);
        EXPECT_NEAR(sum / 200.0, agreement(A, B, 2, 7).shared_neighbours, 1e-13) << noise;
    }
    EXPECT_THROW(static_cast<void>(own.sharedWith(view(A, 5))), InputError);
    EXPECT_THROW(MapNeighbours(view(A, 2), 0), InputError);
}

TEST(MapAgreement, IsFullOfMapsThatAreMovedTurnedMirroredAndScaled) {
    for (const std::size_t dims : {2U, 3U, 5U}) {
        const Map A = test::random_values(dims * 200, 3);
        const MapAgreement found = agreement(A, moved(A, dims, 0.7), dims);
        EXPECT_NEAR(found.disparity, 0.0, 1e-13) << dims;
        EXPECT_EQ(found.shared_neighbours, 1.0) << dims;
    }
}

TEST(MapAgreement, DoesNotDependOnHowAMapLies) {
    for (const std::size_t dims : {2U, 3U, 5U}) {
        const Map A = test::random_values(dims * 200, 3);
        const Map B = disturbed(A, 0.8);
        EXPECT_NEAR(agreement(A, B, dims).disparity,
                    agreement(moved(A, dims, 1.1), B, dims).disparity,
                    1e-13)
            << dims;
        EXPECT_NEAR(agreement(A, B, dims).disparity, agreement(B, A, dims).disparity, 1e-13);
    }
}

TEST(MapAgreement, OfASquareAndARectangleIsThatOfTheFormula) {
    // With sides a and b, half the nuclear norm is (a + b) / (sqrt(2) sqrt(a^2 + b^2)).
    const Map square = {0, 0, 0, 1, 1, 0, 1, 1};
    const Map rectangle = {0, 0, 0, 3, 1, 0, 1, 3};
    EXPECT_NEAR(agreement(square, rectangle).disparity, 1.0 - 16.0 / 20.0, 1e-14);
}

TEST(MapAgreement, IsLowOfMapsThatHaveNothingInCommon) {
    const Map A = test::random_values(2000, 8);
    const Map B = test::random_values(2000, 9);
    const MapAgreement found = agreement(A, B);
    EXPECT_GT(found.disparity, 0.98);
    EXPECT_NEAR(found.shared_neighbours, 10.0 / 999.0, 0.01);
}

TEST(MapAgreement, OfAMapAtOnePlaceIsNone) {
    const Map A = test::random_values(60, 8);
    EXPECT_EQ(agreement(A, Map(60, 0.1)).disparity, 1.0);
    EXPECT_EQ(agreement(Map(60, 0.1), Map(60, 0.1)).disparity, 1.0);
    // Each row has 10 of 29 others that are all equally far.
    EXPECT_EQ(agreement(Map(60, 0.1), Map(60, 0.1)).shared_neighbours, 1.0);
}

TEST(MapAgreement, TakesCoordinatesOfAnySize) {
    const Map A = test::random_values(400, 8);
    const Map B = disturbed(A, 0.4);
    const double expected = agreement(A, B).disparity;
    for (const double factor : {0x1p-600, 0x1p600}) {
        Map scaled = B;
        std::transform(B.begin(), B.end(), scaled.begin(), [=](double b) { return b * factor; });
        EXPECT_EQ(agreement(A, scaled).disparity, expected) << factor;
    }
}

TEST(MapAgreement, OfFewRowsComparesAllOthers) {
    const MapAgreement found = agreement({0, 0, 1, 0, 5, 0}, {0, 0, 9, 0, 5, 0});
    EXPECT_EQ(found.neighbours, 2U);
    EXPECT_EQ(found.shared_neighbours, 1.0);
}

TEST(MapAgreement, IsTheSameForAnyNumberOfThreads) {
    const Map A = test::random_values(3000, 1);
    const Map B = disturbed(A, 0.2);
    const MapAgreement expected = agreement(A, B);
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        EXPECT_EQ(agreement(A, B).disparity, expected.disparity);
        EXPECT_EQ(agreement(A, B).shared_neighbours, expected.shared_neighbours);
    }
}

TEST(MapAgreement, OfSeveralMapsIsTheMeanOverPairs) {
    const Map A = test::random_values(400, 1);
    const Map B = disturbed(A, 0.2);
    const Map C = disturbed(A, 0.7);
    const MatrixView<const double> maps[] = {view(A, 2), view(B, 2), view(C, 2)};
    const MapAgreement found = mean_agreement(maps);
    EXPECT_DOUBLE_EQ(
        found.disparity,
        (agreement(A, B).disparity + agreement(A, C).disparity + agreement(B, C).disparity) / 3);
    EXPECT_DOUBLE_EQ(found.shared_neighbours,
                     (agreement(A, B).shared_neighbours + agreement(A, C).shared_neighbours +
                      agreement(B, C).shared_neighbours) /
                         3);
}

TEST(MapAgreement, RefusesMapsOfOtherRows) {
    const auto refusal = [](const Map& A, const Map& B, std::size_t k) {
        try {
            agreement(A, B, 2, k);
        } catch (const InputError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_THAT(
        refusal(Map(8), Map(6), 10),
        testing::HasSubstr("3 rows and 2 dimensions cannot be compared with one of 4 rows"));
    EXPECT_THAT(refusal(Map(8), Map(8), 0), testing::HasSubstr("at least one neighbour"));
    EXPECT_THAT(refusal(Map(2), Map(2), 1), testing::HasSubstr("nothing to agree in"));
}

}  // namespace
}  // namespace ovik
