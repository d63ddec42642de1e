#include "stats/embedding_start.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/centring.h"
#include "util/input_error.h"

#include "tests/plain/plain_start.h"
#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kNoPlace = std::numeric_limits<double>::quiet_NaN();

std::vector<double> centred_values(std::size_t rows, std::size_t columns) {
    std::vector<double> values = test::random_values(rows * columns, 17);
    zero_mean(values.data(), rows, columns);
    return values;
}

/// Places of which every third is missing.
std::vector<double> places_with_gaps(std::size_t rows, std::size_t dims) {
    std::vector<double> places = test::random_values(rows * dims, 18, 30.0);
    for (std::size_t n = 0; n < rows; n += 3) {
        for (std::size_t d = 0; d < dims; ++d) {
            places[n * dims + d] = kNoPlace;
        }
    }
    return places;
}

std::vector<double> start_of(std::vector<double> places,
                             std::size_t dims,
                             const NeighbourGraph& graph) {
    std::vector<double> Y(places.size());
    const std::size_t rows = places.size() / dims;
    start_at_places({Y.data(), rows, dims}, {places.data(), rows, dims}, graph);
    return Y;
}

TEST(StartAlongComponents, EqualsThePlainProgramBitForBit) {
    constexpr std::size_t kRows = 5000;
    const std::vector<double> X = centred_values(kRows, 9);
    const plain::Components components = plain::principal_components(X, kRows, 9, 3);
    const std::vector<double> expected = plain::component_start(components, 3, kRows, 2, 0.0001);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        std::vector<double> Y(kRows * 2);
        start_along_components(
            {Y.data(), kRows, 2}, principal_components({X.data(), kRows, 9}, 3), 0.0001);
        EXPECT_EQ(Y, expected) << threads;
    }
}

TEST(StartAlongComponents, GivesTheFirstTheSpread) {
    const std::vector<double> X = centred_values(300, 6);
    std::vector<double> Y(600);
    start_along_components({Y.data(), 300, 2}, principal_components({X.data(), 300, 6}, 2), 0.25);
    double squares[2] = {};
    for (std::size_t i = 0; i < Y.size(); ++i) {
        squares[i % 2] += Y[i] * Y[i];
    }
    EXPECT_NEAR(std::sqrt(squares[0] / 299.0), 0.25, 1e-12);
    EXPECT_LT(squares[1], squares[0]);
}

TEST(StartAlongComponents, RefusesRowsThatVaryAlongTooFew) {
    std::vector<double> Y(6);
    const std::vector<double> on_a_line = {-1.0, -2.0, 0.0, 0.0, 1.0, 2.0};
    const PrincipalComponents components = principal_components({on_a_line.data(), 3, 2}, 2);
    EXPECT_THAT(test::refusal_of([&] {
                    start_along_components({Y.data(), 3, 2}, components, 1.0);
                }),
                HasSubstr("the 2 dimensions of the map, and the rows vary along 1 alone\nTake the "
                          "random start, or fewer dimensions."));
}

TEST(StartAtPlaces, EqualsThePlainProgramBitForBit) {
    constexpr std::size_t kRows = 3000;
    for (const std::size_t dims : {2U, 3U}) {
        const std::vector<double> X = test::random_values(kRows * 4, 19);
        const std::vector<double> places = places_with_gaps(kRows, dims);
        const std::vector<double> expected = plain::start_at_places(X, kRows, 4, places, dims);
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount scope(threads);
            const NeighbourGraph graph = placing_neighbours(
                {X.data(), kRows, 4}, MetricKind::Euclidean, NeighbourTies::OfTree);
            EXPECT_EQ(start_of(places, dims, graph), expected) << threads;
        }
    }
}

TEST(StartAtPlaces, PutsRowsAtTheMedianOfTheirNeighbours) {
    // Rows 3 and 4 have no place: row 3 lies among three that have one, row 4 among none.
    const NeighbourGraph graph{5, 3, {1, 2, 3, 0, 2, 3, 1, 0, 3, 1, 0, 2, 3, 3, 4}, {}};
    const std::vector<double> Y =
        start_of({0.0, 0.0, 6.0, 3.0, 9.0, -3.0, kNoPlace, kNoPlace, kNoPlace, kNoPlace}, 2, graph);
    EXPECT_EQ(Y[6], Y[2]);
    EXPECT_EQ(Y[7], Y[1]);
    EXPECT_EQ(Y[8], Y[6]);
    EXPECT_EQ(Y[9], Y[7]);
    const NeighbourGraph two{4, 2, {1, 2, 0, 2, 0, 1, 1, 2}, {}};
    const std::vector<double> mean =
        start_of({0.0, 5.0, 6.0, 3.0, 9.0, -3.0, kNoPlace, kNoPlace}, 2, two);
    EXPECT_NEAR(mean[6], (mean[2] + mean[4]) / 2.0, 1e-15);
    EXPECT_NEAR(mean[7], (mean[3] + mean[5]) / 2.0, 1e-15);
}

TEST(StartAtPlaces, LooksAtTheNearestAlone) {
    // One more neighbour than are looked at, and that one alone has a place.
    NeighbourGraph graph{30, kPlacingNeighbours + 1, {}, {}};
    for (std::size_t n = 0; n < 30; ++n) {
        for (std::size_t m = 0; m <= kPlacingNeighbours; ++m) {
            graph.neighbours.push_back(m == kPlacingNeighbours ? 29 : static_cast<unsigned>(m));
        }
    }
    std::vector<double> places(60, kNoPlace);
    for (std::size_t n = 27; n < 30; ++n) {
        places[2 * n] = static_cast<double>(n * n);
        places[2 * n + 1] = -static_cast<double>(n);
    }
    const std::vector<double> Y = start_of(places, 2, graph);
    EXPECT_EQ(Y[0], Y[56]);
    EXPECT_EQ(Y[1], Y[57]);
}

TEST(StartAtPlaces, RefusesWhatTheMapCouldNotLeave) {
    EXPECT_THAT(test::refusal_of([] {
                    start_of({1.0, 2.0, 3.0, 2.0, 5.0, 2.0}, 2, {});
                }),
                HasSubstr("coordinate 2 of the start is the same in all rows"));
    EXPECT_THAT(test::refusal_of([] {
                    start_of({1.1, 1.1, 3.3, 3.3, 5.7, 5.7, 0.2, 0.2}, 2, {});
                }),
                HasSubstr("the places of the start all lie on a line, and the map of 2 dimensions "
                          "could not leave it"));
    EXPECT_THAT(test::refusal_of([] {
                    start_of({1e-300, -3e-301, -1e-300, 3e-301, 2e-301, -6e-302}, 2, {});
                }),
                HasSubstr("on a line"));
    EXPECT_THAT(test::refusal_of([] {
                    start_of({1, 2, 3, 4, 5, 9, 7, 0, 7, 2, 8, 10, -1, 3, 2}, 3, {});
                }),
                HasSubstr("lie in 2 dimensions, and the map of 3 dimensions"));
    EXPECT_EQ(test::refusal_of([] { start_of({1.0, 1.0, 3.0, 3.0, 5.0, 5.001}, 2, {}); }), "");
    // Two points lie on a line whatever they start from.
    EXPECT_EQ(test::refusal_of([] { start_of({1.0, 1.0, 3.0, 3.0}, 2, {}); }), "");
    EXPECT_THAT(test::refusal_of([] { start_of(std::vector<double>(6, kNoPlace), 2, {}); }),
                HasSubstr("the start has a place for none of the rows"));
}

TEST(StartAtPlaces, RefusesPlacesFromWhichNoPointWouldMove) {
    const std::vector<double> places = {1.0, 2.0, 3.0, 5.0, 5.0, 2.0, -9.0, -9.0};
    for (const double factor : {1e8, 1e20, 1e307}) {
        std::vector<double> wide = places;
        for (double& x : wide) {
            x *= factor;
        }
        EXPECT_THAT(test::refusal_of([&] { start_of(wide, 2, {}); }),
                    testing::Conditional(factor == 1e8, "", HasSubstr("\nDivide them by that")))
            << factor;
    }
}

TEST(ExtentOfPlaces, IsTheLargestDeviationFromTheirMean) {
    std::vector<double> places = {1e6, 3.0, kNoPlace, kNoPlace, 1e6 + 2.0, 3.0, 1e6 + 4.0, 3.0};
    EXPECT_NEAR(extent_of_places({places.data(), 4, 2}), 2.0, 1e-8);
    EXPECT_EQ(extent_remark({places.data(), 4, 2}), "");
    EXPECT_EQ(extent_of_places({nullptr, 0, 2}), 0.0);
    places = {0.0, 0.0, 500.0, 1000.0, 1000.0, 500.0};
    EXPECT_EQ(extent_remark({places.data(), 3, 2}), "");
    places = {0.0, 0.0, 5e5, 1e6, 1e6, 5e5};
    EXPECT_EQ(extent_remark({places.data(), 3, 2}),
              "the places of the start lie up to 5e+05 from their mean, and from places so far "
              "apart points hardly move; divided by 5000 they would lie within 100 of it, as those "
              "of maps do");
}

TEST(HasRowsWithoutPlace, RefusesPlacesThatAreNotWhole) {
    const auto ask = [](std::vector<double> places) {
        return has_rows_without_place({places.data(), places.size() / 2, 2});
    };
    EXPECT_FALSE(ask({1.0, 2.0, 3.0, 4.0}));
    EXPECT_TRUE(ask({1.0, 2.0, kNoPlace, kNoPlace}));
    for (const double half : {kNoPlace, HUGE_VAL}) {
        EXPECT_THAT(test::refusal_of([&] {
                        ask({1.0, 2.0, 3.0, half});
                    }),
                    HasSubstr("the start of row 1, counted from 0, is not finite"));
    }
    EXPECT_THROW(ask({HUGE_VAL, HUGE_VAL}), InputError);
}

TEST(PlacingNeighbours, AreThoseOfDistancesThatAreGiven) {
    constexpr std::size_t kRows = 80;
    const std::vector<double> X = test::random_values(kRows * 3, 21);
    std::vector<double> distances(kRows * kRows);
    for (std::size_t n = 0; n < kRows; ++n) {
        for (std::size_t m = 0; m < kRows; ++m) {
            distances[n * kRows + m] = std::sqrt(std::pow(X[3 * n] - X[3 * m], 2) +
                                                 std::pow(X[3 * n + 1] - X[3 * m + 1], 2) +
                                                 std::pow(X[3 * n + 2] - X[3 * m + 2], 2));
        }
    }
    const NeighbourGraph graph = placing_neighbours(
        {distances.data(), kRows, kRows}, MetricKind::Precomputed, NeighbourTies::OfTree);
    EXPECT_EQ(graph.neighbours,
              placing_neighbours({X.data(), kRows, 3}, MetricKind::Euclidean, NeighbourTies::OfTree)
                  .neighbours);
    EXPECT_EQ(graph.distances[0], distances[graph.neighbours[0]]);
    // Equal distances, those of the row itself among them: the first rows come first.
    const std::vector<double> equal(9);
    EXPECT_THAT(
        placing_neighbours({equal.data(), 3, 3}, MetricKind::Precomputed, NeighbourTies::OfTree)
            .neighbours,
        ElementsAre(1, 2, 0, 2, 0, 1));
}

TEST(PlacingNeighbours, AreAllOthersIfThereAreFew) {
    const std::vector<double> X = {0.0, 1.0, 5.0, 5.5};
    const NeighbourGraph graph =
        placing_neighbours({X.data(), 4, 1}, MetricKind::Euclidean, NeighbourTies::OfTree);
    EXPECT_EQ(graph.neighbour_count, 3U);
    EXPECT_THAT(graph.neighbours, ElementsAre(1, 2, 3, 0, 2, 3, 3, 1, 0, 2, 1, 0));
    EXPECT_THAT(graph.distances,
                ElementsAre(1.0, 5.0, 5.5, 1.0, 4.0, 4.5, 0.5, 4.0, 5.0, 0.5, 4.5, 5.5));
}

}  // namespace
}  // namespace ovik
