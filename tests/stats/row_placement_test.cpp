#include "stats/row_placement.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "stats/centring.h"
#include "stats/fit.h"
#include "stats/row_metric.h"
#include "util/input_error.h"
#include "util/rounded_functions.h"

#include "tests/plain/plain_placement.h"
#include "tests/support/held_out_rows.h"
#include "tests/support/plain_functions.h"
#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

/// A map of random rows: where they lie has nothing to do with what they are.
struct RandomMap {
    RandomMap(std::size_t rows, std::size_t columns, std::size_t dims, double map_perplexity)
        : input(test::random_values(rows * columns, 3, 7.0)),
          embedding(test::random_values(rows * dims, 4, 20.0)),
          shape{rows, columns, dims},
          perplexity(map_perplexity) {
        scale = centre_and_scale({input.data(), rows, columns});
    }

    [[nodiscard]] FinishedMap view() const {
        return {{input.data(), shape[0], shape[1]},
                scale,
                {embedding.data(), shape[0], shape[2]},
                perplexity,
                MetricKind::Euclidean,
                numerics};
    }

    [[nodiscard]] plain::FixedMap plainly() const {
        return {
            input, scale.means, scale.factor, embedding, shape[0], shape[1], shape[2], perplexity};
    }

    std::vector<double> input;
    std::vector<double> embedding;
    std::size_t shape[3];
    double perplexity;
    NumericsKind numerics = NumericsKind::Platform;
    InputScale scale;
};

/// Places rows, which are as many as fill the values.
PlacedRows place(const RandomMap& map, const std::vector<double>& values) {
    const std::size_t columns = map.shape[1];
    return place_rows(map.view(), {values.data(), values.size() / columns, columns});
}

/// Holds every row to the plain program.
void expect_plain_places(const RandomMap& map, const std::vector<double>& values) {
    const std::size_t columns = map.shape[1];
    const std::size_t dims = map.shape[2];
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        const PlacedRows placed = place(map, values);
        ASSERT_EQ(placed.costs.size(), values.size() / columns);
        for (std::size_t n = 0; n < placed.costs.size(); ++n) {
            const auto row = values.begin() + static_cast<std::ptrdiff_t>(n * columns);
            const plain::Place expected =
                plain::place_row(map.plainly(), {row, row + static_cast<std::ptrdiff_t>(columns)});
            EXPECT_EQ(placed.costs[n], expected.cost) << n;
            for (std::size_t d = 0; d < dims; ++d) {
                EXPECT_EQ(placed.embedding[n * dims + d], expected.y[d]) << n;
            }
        }
    }
}

TEST(PlaceRows, EqualsThePlainProgramBitForBit) {
    expect_plain_places(RandomMap(300, 6, 2, 12.7), test::random_values(20 * 6, 5, 7.0));
}

TEST(PlaceRows, ByPortableNumericsEqualsThePlainProgramWithRoundedFunctions) {
    RandomMap map(300, 6, 2, 12.7);
    map.numerics = NumericsKind::Portable;
    const test::PlainFunctions scope({&rounded_exp, &rounded_log});
    expect_plain_places(map, test::random_values(60 * 6, 5, 7.0));
}

TEST(PlaceRows, TakesAnyNumberOfDimensions) {
    expect_plain_places(RandomMap(100, 3, 5, 5.0), test::random_values(9 * 3, 6, 7.0));
}

TEST(PlaceRows, TakesMapsOfFewerRowsThanItAsksFor) {
    expect_plain_places(RandomMap(8, 3, 2, 4.0), test::random_values(5 * 3, 7, 7.0));
    expect_plain_places(RandomMap(2, 3, 2, 1.0), test::random_values(2 * 3, 8, 7.0));
}

TEST(PlaceRows, TakesTheLowerOfRowsAtEqualDistances) {
    RandomMap map(60, 2, 2, 3.0);
    for (std::size_t n = 0; n < 30; ++n) {
        std::copy_n(map.input.begin() + static_cast<std::ptrdiff_t>(2 * n),
                    2,
                    map.input.begin() + static_cast<std::ptrdiff_t>(2 * (n + 30)));
    }
    const std::vector<double> values = test::random_values(10 * 2, 9, 7.0);
    expect_plain_places(map, values);
    for (const std::uint32_t nearest : place(map, values).nearest) {
        EXPECT_LT(nearest, 30U);
    }
}

TEST(PlaceRows, PlacesEachRowByItself) {
    const RandomMap map(200, 4, 2, 10.0);
    const std::size_t count = 50;
    const std::vector<double> values = test::random_values(count * 4, 10, 7.0);
    const PlacedRows together = place(map, values);
    for (std::size_t n = 0; n < count; ++n) {
        const auto row = values.begin() + static_cast<std::ptrdiff_t>(4 * n);
        const PlacedRows alone = place(map, {row, row + 4});
        EXPECT_EQ(alone.embedding[0], together.embedding[2 * n]);
        EXPECT_EQ(alone.embedding[1], together.embedding[2 * n + 1]);
        EXPECT_EQ(alone.costs[0], together.costs[n]);
        EXPECT_EQ(alone.nearest[0], together.nearest[n]);
        EXPECT_EQ(alone.nearest_distances[0], together.nearest_distances[n]);
    }
}

TEST(PlaceRows, NeverEndsAtAPlaceThatCostsMoreThanTheStart) {
    const RandomMap map(200, 4, 2, 10.0);
    const std::vector<double> values = test::random_values(50 * 4, 11, 7.0);
    const MatrixView<const double> rows{values.data(), 50, 4};
    PlacementDescent none;
    none.iterations = 0;
    const PlacedRows starts = place_rows(map.view(), rows, none);
    PlacementDescent wild;
    wild.learning_rate = 1e6;
    const PlacedRows thrown = place_rows(map.view(), rows, wild);
    const PlacedRows placed = place_rows(map.view(), rows);
    for (std::size_t n = 0; n < 50; ++n) {
        EXPECT_LE(placed.costs[n], starts.costs[n]);
        EXPECT_LE(thrown.costs[n], starts.costs[n]);
    }
}

TEST(PlaceRows, NeverLeavesTheMap) {
    // The neighbours of each row lie all over this map, so that few places cost less than none.
    const RandomMap map(300, 4, 2, 10.0);
    const std::vector<double> values = test::random_values(50 * 4, 12, 7.0);
    const std::vector<double>& Y = map.embedding;
    for (const double learning_rate : {2.0, 1e6}) {
        PlacementDescent descent;
        descent.learning_rate = learning_rate;
        const PlacedRows placed = place_rows(map.view(), {values.data(), 50, 4}, descent);
        for (std::size_t i = 0; i < placed.embedding.size(); ++i) {
            double low = HUGE_VAL;
            double high = -HUGE_VAL;
            for (std::size_t j = i % 2; j < Y.size(); j += 2) {
                low = std::min(low, Y[j]);
                high = std::max(high, Y[j]);
            }
            EXPECT_GE(placed.embedding[i], low) << i;
            EXPECT_LE(placed.embedding[i], high) << i;
        }
    }
}

TEST(PlaceRows, SetsOutFromTheCheapestOfAllPlacesOfTheNearest) {
    // Ten rows are alike, and all but the first of them, which is the nearest, lie together: both
    // this one and the median of 25 are worse places than those of the nine.
    std::vector<double> input(60);
    std::vector<double> Y(2 * 60);
    for (std::size_t j = 0; j < 60; ++j) {
        input[j] = j < 10 ? 1.0 + 0.001 * static_cast<double>(j) : 20.0 + static_cast<double>(j);
        Y[2 * j] = j == 0 ? -30.0 : (j < 10 ? 30.0 : 10.0 * static_cast<double>(j));
        Y[2 * j + 1] = j < 10 ? 0.01 * static_cast<double>(j) : 300.0;
    }
    const InputScale scale{{0.0}, 1.0};
    const FinishedMap map{{input.data(), 60, 1}, scale, {Y.data(), 60, 2}, 9.0};
    PlacementDescent none;
    none.iterations = 0;
    const PlacedRows start = place_rows(map, {scale.means.data(), 1, 1}, none);
    EXPECT_EQ(start.nearest[0], 0U);
    EXPECT_EQ(start.embedding[0], 30.0);
    EXPECT_LT(start.embedding[1], 0.1);
    EXPECT_LT(start.costs[0], cost_of_no_place(60, 9.0));
    EXPECT_LE(place_rows(map, {scale.means.data(), 1, 1}).costs[0], start.costs[0]);
}

TEST(CostOfNoPlace, IsThatOfEqualSimilaritiesToAllRows) {
    EXPECT_EQ(cost_of_no_place(900, 20.0), std::log(45.0));
    EXPECT_EQ(cost_of_no_place(7, 7.0), 0.0);
}

TEST(PlaceRows, KnowsARowOfTheMapAgain) {
    RandomMap map(100, 4, 2, 5.0);
    // In the units before centring, to the bit.
    map.scale.means.assign(4, 0.0);
    map.scale.factor = 1.0;
    const PlacedRows placed = place(map, map.input);
    for (std::size_t n = 0; n < 100; ++n) {
        EXPECT_EQ(placed.nearest[n], n);
        EXPECT_EQ(placed.nearest_distances[n], 0.0);
    }
}

TEST(PlaceRows, PlacesNoRows) {
    const RandomMap map(30, 4, 2, 5.0);
    EXPECT_TRUE(place(map, {}).embedding.empty());
}

TEST(PlaceRows, RefusesRowsBeyondAllMeasureByTheirNumber) {
    const RandomMap map(30, 2, 2, 5.0);
    for (const double bad : {1e300, HUGE_VAL, std::numeric_limits<double>::quiet_NaN()}) {
        try {
            place(map, {1.0, 2.0, 3.0, bad, bad, 4.0});
            ADD_FAILURE() << bad << " was placed";
        } catch (const InputError& error) {
            EXPECT_EQ(std::string(error.what()).substr(0, 21), "row 2 has values that");
        }
    }
}

TEST(PlaceRows, RefusesWhatDoesNotFitTogether) {
    RandomMap map(30, 4, 2, 5.0);
    const std::vector<double> values(12);
    EXPECT_THROW(place_rows(map.view(), {values.data(), 4, 3}), std::invalid_argument);
    map.perplexity = 0.5;
    EXPECT_THROW(place(map, values), std::invalid_argument);
    map.perplexity = 5.0;
    map.scale.means.pop_back();
    EXPECT_THROW(place(map, values), std::invalid_argument);
}

TEST(PlaceRows, BringsHeldOutGenesNearerToTheirNeighboursThanTheMeanOfTheseDoes) {
    const test::HeldOutGenes genes("brauer2008_chemostat.tsv", 600);
    const test::HeldOutDistances distances = genes.measure(15.0, 500);
    EXPECT_LT(distances.placed, distances.mean_of_nearest);
    EXPECT_LT(distances.placed, distances.start);
}

TEST(PlaceRows, ComparesThemByTheMetricOfTheMap) {
    std::vector<double> values = test::random_values(40 * 6, 61);
    const std::vector<double> as_they_are(values.begin() + 30 * 6, values.end());
    std::vector<double> rows = as_they_are;
    // A correlation does not change with a factor of the row.
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = std::ldexp(rows[i], static_cast<int>(i / 6) * 3 - 10);
    }
    const MatrixView<double> input{values.data(), 30, 6};
    prepare_rows(input, MetricKind::Pearson);
    const InputScale scale = centre_and_scale(input);
    const std::vector<double> Y = test::random_values(30 * 2, 62);
    FinishedMap map{input, scale, {Y.data(), 30, 2}, 5.0, MetricKind::Pearson};
    const PlacedRows placed = place_rows(map, {rows.data(), 10, 6});
    EXPECT_EQ(placed.embedding, place_rows(map, {as_they_are.data(), 10, 6}).embedding);
    // The same rows, brought into the form of the metric beforehand.
    std::vector<double> prepared = rows;
    prepare_rows({prepared.data(), 10, 6}, MetricKind::Pearson);
    map.metric = MetricKind::Euclidean;
    EXPECT_EQ(placed.embedding, place_rows(map, {prepared.data(), 10, 6}).embedding);
    EXPECT_NE(placed.embedding, place_rows(map, {rows.data(), 10, 6}).embedding);
}

TEST(PlaceRows, RefusesRowsThatTheMetricCannotCompare) {
    std::vector<double> values = test::random_values(12 * 4, 63);
    std::vector<double> rows(values.begin() + 8 * 4, values.end());
    std::fill_n(rows.begin() + 4, 8, 2.5);
    const MatrixView<double> input{values.data(), 8, 4};
    prepare_rows(input, MetricKind::Spearman);
    const InputScale scale = centre_and_scale(input);
    const std::vector<double> Y = test::random_values(8 * 2, 64);
    const FinishedMap map{input, scale, {Y.data(), 8, 2}, 2.0, MetricKind::Spearman};
    EXPECT_EQ(test::refusal_of([&] {
                  place_rows(map, {rows.data(), 4, 4});
              }),
              "row 2 does not vary, so that it has no spearman correlation with any row of the map "
              "(2 such rows)\nTake such rows out, or place them on a map by the metric euclidean.");
}

TEST(BarsPlacement, IsOfOptionsOfTheListAlone) {
    std::vector<std::string_view> barring;
    const FitOptions options;
    visit_fit_options(options, [&barring](const auto& option) {
        if (bars_placement(option.words.name, "precomputed")) {
            barring.push_back(option.words.name);
        }
    });
    EXPECT_EQ(barring, (std::vector<std::string_view>{"metric", "pca", "affinity", "multiscale"}));
    EXPECT_FALSE(bars_placement("metric", "pearson"));
}

TEST(LargestNearestDistance, IsThatOfTheLoneliestRow) {
    const std::vector<double> rows = {0.0, 0.0, 3.0, 4.0, 0.0, 1.0, 30.0, 44.0};
    EXPECT_EQ(largest_nearest_distance({rows.data(), 4, 2}), std::hypot(27.0, 40.0));
}

}  // namespace
}  // namespace ovik
