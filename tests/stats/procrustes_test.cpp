#include "stats/procrustes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

using Map = std::vector<double>;

MatrixView<const double> view(const Map& map, std::size_t dims) {
    return {map.data(), map.size() / dims, dims};
}

Map laid_onto(const Map& onto, Map map, std::size_t dims) {
    procrustes_move(view(onto, dims), view(map, dims)).apply({map.data(), map.size() / dims, dims});
    return map;
}

double squared_distance(const Map& a, const Map& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    }
    return sum;
}

/// Turned in the first two dimensions, if so wanted mirrored, scaled and moved.
Map moved(Map map, std::size_t dims, bool is_mirrored) {
    for (std::size_t n = 0; n < map.size(); n += dims) {
        const double x = map[n];
        const double y = map[n + 1];
        map[n] = std::cos(0.7) * x - std::sin(0.7) * y;
        map[n + 1] = (is_mirrored ? -1.0 : 1.0) * (std::sin(0.7) * x + std::cos(0.7) * y);
        for (std::size_t d = 0; d < dims; ++d) {
            map[n + d] = 3.5 * map[n + d] + 17.0;
        }
    }
    return map;
}

TEST(ProcrustesMove, UndoesMovingTurningMirroringAndScaling) {
    for (const std::size_t dims : {2U, 3U, 5U}) {
        const Map A = test::random_values(dims * 200, 3);
        for (const bool is_mirrored : {false, true}) {
            const Map back = laid_onto(A, moved(A, dims, is_mirrored), dims);
            EXPECT_LT(squared_distance(back, A), 1e-20) << dims;
        }
    }
}

TEST(ProcrustesMove, TurnsByAnOrthogonalMatrix) {
    const std::size_t dims = 4;
    const Map A = test::random_values(dims * 50, 1);
    const Map B = test::random_values(dims * 50, 2);
    const ProcrustesMove move = procrustes_move(view(A, dims), view(B, dims));
    for (std::size_t i = 0; i < dims; ++i) {
        for (std::size_t j = 0; j < dims; ++j) {
            double product = 0.0;
            for (std::size_t k = 0; k < dims; ++k) {
                product += move.turn[i * dims + k] * move.turn[j * dims + k];
            }
            EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 1e-14);
        }
    }
}

TEST(ProcrustesMove, IsTheBestOfAllTurnsOfThePlane) {
    const Map A = test::random_values(400, 3);
    Map B = test::random_values(400, 4);
    for (std::size_t i = 0; i < B.size(); ++i) {
        B[i] += 0.6 * A[i];
    }
    const ProcrustesMove best = procrustes_move(view(A, 2), view(B, 2));
    const double least = squared_distance(laid_onto(A, B, 2), A);
    for (int degree = 0; degree < 360; ++degree) {
        const double angle = degree * 3.14159265358979 / 180.0;
        for (const double mirror : {1.0, -1.0}) {
            ProcrustesMove other = best;
            other.turn = {std::cos(angle),
                          mirror * std::sin(angle),
                          -std::sin(angle),
                          mirror * std::cos(angle)};
            Map turned = B;
            other.apply({turned.data(), turned.size() / 2, 2});
            EXPECT_GE(squared_distance(turned, A), least * (1.0 - 1e-12)) << degree;
        }
    }
}

TEST(ProcrustesMove, GivesTheSpreadOfTheOther) {
    const Map A = test::random_values(400, 3);
    const Map B = test::random_values(400, 4, 50.0);
    EXPECT_NEAR(
        standardised(view(laid_onto(A, B, 2), 2)).norm, standardised(view(A, 2)).norm, 1e-10);
}

TEST(ProcrustesMove, LeavesWhatTheDisparityTells) {
    // With the best scale in the place of the spread: 1 - overlap^2 of the square of the norm.
    const Map A = test::random_values(400, 3);
    Map B = A;
    const Map noise = test::random_values(400, 5, 0.4);
    for (std::size_t i = 0; i < B.size(); ++i) {
        B[i] += noise[i];
    }
    const double norm = standardised(view(A, 2)).norm;
    const double disparity =
        procrustes_disparity(standardised(view(A, 2)), standardised(view(B, 2)));
    ProcrustesMove move = procrustes_move(view(A, 2), view(B, 2));
    move.scale *= std::sqrt(1.0 - disparity);
    Map laid = B;
    move.apply({laid.data(), laid.size() / 2, 2});
    EXPECT_NEAR(squared_distance(laid, A), disparity * norm * norm, 1e-9);
}

TEST(ProcrustesMove, OfMapsWithoutSomeDimensionsIsFiniteAndOrthogonal) {
    const Map flat = {0, 0, 0, 1, 0, 0, 2, 0, 0, 4, 0, 0};
    const Map upright = {0, 0, 1, 0, 2, 1, 0, 4, 1, 0, 8, 1};
    EXPECT_LT(squared_distance(laid_onto(flat, upright, 3), flat), 1e-20);
    const Map point(12, 3.0);
    EXPECT_EQ(laid_onto(flat, point, 3), Map({1.75, 0, 0, 1.75, 0, 0, 1.75, 0, 0, 1.75, 0, 0}));
    for (const double value : laid_onto(point, flat, 3)) {
        EXPECT_TRUE(std::isfinite(value));
    }
}

TEST(ProcrustesMove, LeavesPlacesThatAreNone) {
    const Map A = test::random_values(20, 3);
    Map places = {std::numeric_limits<double>::quiet_NaN(), 1.0};
    procrustes_move(view(A, 2), view(A, 2)).apply({places.data(), 1, 2});
    EXPECT_TRUE(std::isnan(places[0]));
}

TEST(Standardised, TakesCoordinatesOfAnySize) {
    const Map A = test::random_values(40, 3);
    for (const double factor : {0x1p-600, 0x1p600}) {
        Map scaled = A;
        std::transform(A.begin(), A.end(), scaled.begin(), [=](double a) { return a * factor; });
        const StandardisedMap map = standardised(view(scaled, 2));
        EXPECT_EQ(map.values, standardised(view(A, 2)).values);
        EXPECT_EQ(map.norm, standardised(view(A, 2)).norm * factor);
        EXPECT_EQ(map.centre[1], standardised(view(A, 2)).centre[1] * factor);
    }
}

}  // namespace
}  // namespace ovik
