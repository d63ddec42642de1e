#include "stats/entropy_bracket.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

std::vector<double> random_squares(std::size_t count, unsigned int seed, double scale) {
    std::vector<double> squares = test::random_values(count, seed, scale);
    for (double& square : squares) {
        square *= square;
    }
    return squares;
}

double entropy(const std::vector<double>& squares, std::size_t left_out, double beta) {
    double sum = 0.0;
    double weighted = 0.0;
    for (std::size_t i = 0; i < squares.size(); ++i) {
        const double weight = i == left_out ? 0.0 : std::exp(-beta * squares[i]);
        sum += weight;
        weighted += weight * squares[i];
    }
    return beta * weighted / sum + std::log(sum);
}

TEST(EntropyBracket, KnowsTheSideOfAlmostAllPrecisions) {
    for (const InstructionSet set : test::available_instruction_sets()) {
        const test::InstructionLimit limit(set);
        for (const std::size_t left_out : {0U, 13U, 89U, 90U}) {
            const std::vector<double> squares = random_squares(90, 82, 0.3);
            const double wanted = std::log(20.0);
            EntropyBracket bracket(squares, left_out, wanted);
            const double found = bracket.narrow(1.0);
            EXPECT_NEAR(entropy(squares, left_out, found), wanted, 1e-5);
            int unknown = 0;
            for (double factor = 0.5; factor < 2.0; factor *= 1.0 + 1e-3) {
                const double side = bracket.sideOf(factor * found);
                const double difference = entropy(squares, left_out, factor * found) - wanted;
                unknown += side == 0.0 ? 1 : 0;
                if (side != 0.0) {
                    EXPECT_GE(side * difference, 1e-5);
                }
            }
            EXPECT_LE(unknown, 1);
            EXPECT_EQ(bracket.sideOf(found), 0.0);
            EXPECT_EQ(bracket.sideOf(0.0), 1.0);
            EXPECT_EQ(bracket.sideOf(1e300), -1.0);
        }
    }
}

TEST(EntropyBracket, NeedsNoGoodGuess) {
    const std::vector<double> squares = random_squares(90, 83, 1e-3);
    for (double guess : {1e-30, 1e-3, 1.0, 1e9, 1e30}) {
        EntropyBracket bracket(squares, 90, std::log(20.0));
        for (int row = 0; row < 12; ++row) {
            guess = bracket.narrow(guess);
        }
        EXPECT_NEAR(entropy(squares, 90, guess), std::log(20.0), 1e-5);
    }
}

TEST(EntropyBracket, KnowsNoSideWithoutNumbers) {
    const double odd[] = {std::nan(""), HUGE_VAL, 1.0};
    for (const double wanted : {1.0, std::nan(""), -HUGE_VAL}) {
        EntropyBracket bracket({odd, 1}, 1, wanted);
        bracket.narrow(1.0);
        EXPECT_EQ(bracket.sideOf(1.0), 0.0);
        EntropyBracket infinite({odd + 1, 2}, 2, wanted);
        infinite.narrow(1.0);
        EXPECT_EQ(infinite.sideOf(1.0), 0.0);
        EntropyBracket empty({odd, 0}, 0, wanted);
        empty.narrow(1.0);
        EXPECT_EQ(empty.sideOf(1.0), 0.0);
    }
    // All weights underflow.
    const std::vector<double> far(5, 1e5);
    EntropyBracket bracket(far, 5, 1.0);
    EXPECT_EQ(bracket.sideOf(1.0), 0.0);
}

}  // namespace
}  // namespace ovik
