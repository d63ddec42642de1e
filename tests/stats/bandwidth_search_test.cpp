#include "stats/bandwidth_search.h"

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_points.h"

namespace ovik {
namespace {

TEST(BandwidthSearch, AcceptsOnlyWithinTheTolerance) {
    EXPECT_FALSE(BandwidthSearch().accept(1e-5));
    EXPECT_FALSE(BandwidthSearch().accept(-1e-5));
    EXPECT_TRUE(BandwidthSearch().accept(std::nextafter(1e-5, 0.0)));
    EXPECT_TRUE(BandwidthSearch().accept(std::nextafter(-1e-5, 0.0)));
    EXPECT_FALSE(BandwidthSearch().accept(std::nan("")));
}

TEST(BandwidthSearch, DoublesAndHalvesWithoutBounds) {
    BandwidthSearch up;
    up.accept(1.0);
    up.accept(1.0);
    EXPECT_EQ(up.beta(), 4.0);
    BandwidthSearch down;
    down.accept(-1.0);
    down.accept(-1.0);
    EXPECT_EQ(down.beta(), 0.25);
}

TEST(BandwidthSearch, TakesTheMiddleBetweenBounds) {
    BandwidthSearch search;
    search.accept(1.0);
    search.accept(-1.0);
    EXPECT_EQ(search.beta(), 1.5);
    search.accept(1.0);
    EXPECT_EQ(search.beta(), 1.75);
}

/// The search with a trial for every attempt.
void plain_calibration(const CalibratedPoints& points, double perplexity, int attempts) {
    const std::size_t count = points.squared_distances.size();
    BandwidthSearch search;
    double sum = DBL_MIN;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const double beta = search.beta();
        sum = DBL_MIN;
        double entropy = 0.0;
        for (std::size_t m = 0; m < count; ++m) {
            const double square = points.squared_distances[m];
            points.similarities[m] = m == points.left_out ? DBL_MIN : std::exp(-beta * square);
        }
        for (std::size_t m = 0; m < count; ++m) {
            sum += points.similarities[m];
            entropy += points.similarities[m] * points.squared_distances[m] * beta;
        }
        if (search.accept(entropy / sum + std::log(sum) - std::log(perplexity))) {
            break;
        }
    }
    for (std::size_t m = 0; m < count; ++m) {
        points.similarities[m] /= sum;
    }
}

/// @return trials that were made
int expect_the_same(std::vector<double> squares,
                    double perplexity,
                    double guess,
                    std::size_t left_out,
                    int attempts = 200) {
    if (left_out < squares.size()) {
        squares[left_out] = 0.0;
    }
    std::vector<double> expected(squares.size());
    plain_calibration({squares, expected.data(), left_out}, perplexity, attempts);
    std::vector<double> actual(squares.size());
    int trials = 0;
    const auto fill = [&](double beta) {
        ++trials;
        for (std::size_t m = 0; m < squares.size(); ++m) {
            actual[m] = m == left_out ? DBL_MIN : std::exp(-beta * squares[m]);
        }
    };
    calibrate_similarities({squares, actual.data(), left_out},
                           perplexity,
                           attempts,
                           guess,
                           platform_elementary().log,
                           fill);
    for (std::size_t m = 0; m < squares.size(); ++m) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(actual[m]),
                  std::bit_cast<std::uint64_t>(expected[m]))
            << squares.size() << " points, perplexity " << perplexity << ", guess " << guess;
    }
    return trials;
}

std::vector<double> random_squares(std::size_t count, unsigned int seed, double scale) {
    std::vector<double> squares = test::random_values(count, seed, scale);
    for (double& square : squares) {
        square *= square;
    }
    return squares;
}

TEST(CalibrateSimilarities, GiveWhatATrialForEveryAttemptWould) {
    int trials = 0;
    int rows = 0;
    for (const double scale : {1e-6, 1e-3, 0.1, 1.0, 30.0, 1e4}) {
        for (const double perplexity : {0.5, 1.0, 2.0, 30.0, 80.0, 89.999, 90.0, 100.0}) {
            for (unsigned int seed = 0; seed < 10; ++seed) {
                const std::vector<double> squares = random_squares(90, seed, scale);
                const int made = expect_the_same(squares, perplexity, 1.0, seed * 10);
                if (perplexity > 1.0 && perplexity < 89.0 && scale >= 1e-3 && scale <= 1.0) {
                    trials += made;
                    ++rows;
                }
            }
        }
    }
    // Most attempts are passed over.
    EXPECT_LT(trials, 2 * rows);
}

TEST(CalibrateSimilarities, DoNotDependOnTheGuess) {
    const std::vector<double> squares = random_squares(45, 84, 0.2);
    for (const double guess : {1e-30, 1e-5, 1.0, 17.3, 1e8, 1e30}) {
        expect_the_same(squares, 12.0, guess, 45);
    }
}

TEST(CalibrateSimilarities, GiveTheSameOfOddDistancesAndPerplexities) {
    const std::vector<std::vector<double>> rows = {
        {},
        {0.0},
        {0.3},
        std::vector<double>(20, 0.0),
        std::vector<double>(20, 0.7),
        std::vector<double>(20, 1e5),
        {0.0, 0.0, 0.0, 1.0, 1.0},
        {1e-320, 1e-310, 1e-300, 1e-280},
        {1e300, 2e300, 1e305, 3.0},
        {0.1, HUGE_VAL, 0.2, 0.7, 0.9},
        {0.1, std::nan(""), 0.2, 0.7, 0.9},
        {700.0, 701.0, 702.0, 703.0, 710.0, 744.0, 745.0},
    };
    for (const std::vector<double>& squares : rows) {
        for (const double perplexity : {1.5, 3.0, 0.0, -2.0, 20.0, 1e300, std::nan("")}) {
            for (const int attempts : {1, 2, 200}) {
                expect_the_same(squares, perplexity, 1.0, squares.size(), attempts);
                expect_the_same(squares, perplexity, 1.0, 0, attempts);
            }
        }
    }
}

}  // namespace
}  // namespace ovik
