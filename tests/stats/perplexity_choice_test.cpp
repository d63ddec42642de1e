#include "stats/perplexity_choice.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// Of a matrix in which noise may reach 6 %.
PerplexityOutcome outcome(double perplexity, double better, double stability, double kept) {
    return {perplexity, better, 0.06, stability, kept};
}

TEST(ChoosePerplexity, TakesTheSmallestNearTheBest) {
    const std::vector<PerplexityOutcome> outcomes = {outcome(100, 0.60, 0.44, 0.33),
                                                     outcome(5, 0.40, 0.20, 0.34),
                                                     outcome(20, 0.595, 0.43, 0.33),
                                                     outcome(50, 0.61, 0.43, 0.33)};
    const PerplexityChoice choice = choose_perplexity(outcomes);
    EXPECT_EQ(choice.recommended, 2U);
    EXPECT_EQ(choice.sentence,
              "Perplexity 20 is recommended: it is the smallest that lies at most 2.0 points below "
              "the best in rows better than noise (59.5 %, best 61.0 %), stability (43.0 %, best "
              "44.0 %) and kept neighbours (33.0 %, best 34.0 %).");
}

TEST(ChoosePerplexity, TakesTheSmallestLagWhereNoneIsNear) {
    const std::vector<PerplexityOutcome> outcomes = {outcome(5, 0.50, 0.20, 0.40),
                                                     outcome(12.5, 0.42, 0.30, 0.32),
                                                     outcome(50, 0.30, 0.36, 0.20)};
    const PerplexityChoice choice = choose_perplexity(outcomes);
    EXPECT_EQ(choice.recommended, 1U);
    EXPECT_THAT(choice.sentence,
                StartsWith("Perplexity 12.5 is recommended: none is near the best in all that was "
                           "measured, and its lag is the least, 8.0 points in "));
    // Of equal lags the smaller perplexity.
    const std::vector<PerplexityOutcome> equal = {outcome(30, 0.5, 0.2, 0.3),
                                                  outcome(10, 0.2, 0.5, 0.3)};
    EXPECT_EQ(choose_perplexity(equal).recommended, 1U);
}

TEST(ChoosePerplexity, LeavesMapsOutThatAreNoBetterThanNoise) {
    const std::vector<PerplexityOutcome> outcomes = {outcome(5, 0.06, 0.9, 0.9),
                                                     outcome(20, 0.30, 0.4, 0.3)};
    const PerplexityChoice choice = choose_perplexity(outcomes);
    EXPECT_EQ(choice.recommended, 1U);
    EXPECT_THAT(choice.sentence, HasSubstr("stability (40.0 %, best 40.0 %)"));
}

TEST(ChoosePerplexity, RecommendsNoneWhereNothingIsBetterThanNoise) {
    const std::vector<PerplexityOutcome> outcomes = {outcome(5, 0.04, 0.9, 0.9),
                                                     outcome(20, 0.055, 0.9, 0.9)};
    const PerplexityChoice choice = choose_perplexity(outcomes);
    EXPECT_FALSE(choice.recommended.has_value());
    EXPECT_EQ(choice.sentence,
              "No perplexity is recommended: with none of them more than 5.5 % of the rows are "
              "placed better than noise, and noise itself may reach 6.0 %. What these maps show "
              "cannot be told from shuffled values.");
    EXPECT_FALSE(choose_perplexity({outcomes.data(), 1}).recommended.has_value());
}

TEST(ChoosePerplexity, JudgesByWhatWasMeasured) {
    const std::vector<PerplexityOutcome> outcomes = {outcome(5, kNone, 0.3, 0.3),
                                                     outcome(20, kNone, 0.4, 0.29)};
    const PerplexityChoice choice = choose_perplexity(outcomes);
    EXPECT_EQ(choice.recommended, 1U);
    EXPECT_THAT(choice.sentence, testing::Not(HasSubstr("noise")));
    const std::vector<PerplexityOutcome> partly = {outcome(5, 0.5, kNone, 0.3),
                                                   outcome(20, 0.5, 0.4, 0.3)};
    EXPECT_EQ(choose_perplexity(partly).recommended, 0U);
}

TEST(ChoosePerplexity, HasNothingToChooseFromOfOne) {
    EXPECT_FALSE(choose_perplexity({}).recommended.has_value());
    const std::vector<PerplexityOutcome> one = {outcome(20, 0.5, 0.4, 0.3)};
    const PerplexityChoice choice = choose_perplexity(one);
    EXPECT_FALSE(choice.recommended.has_value());
    EXPECT_EQ(choice.sentence, "There is one perplexity, and so nothing to choose from.");
}

TEST(SentenceOfCopies, SaysHowManyRowsCountOnlyAsCopies) {
    EXPECT_EQ(sentence_of_copies(0), "");
    EXPECT_THAT(sentence_of_copies(1),
                StartsWith(" But 1 row holds the same values as an earlier one: copies stay "));
    EXPECT_THAT(sentence_of_copies(300), StartsWith(" But 300 rows hold the same values"));
}

TEST(LargestShareOfNoise, FallsWithRowsAndMatrices) {
    EXPECT_NEAR(largest_share_of_noise(5537, 5), 0.0719, 1e-4);
    EXPECT_NEAR(largest_share_of_noise(2000, 5), 0.0865, 1e-4);
    EXPECT_GT(largest_share_of_noise(100, 5), largest_share_of_noise(1000, 5));
    EXPECT_GT(largest_share_of_noise(100, 1), largest_share_of_noise(100, 5));
}

}  // namespace
}  // namespace ovik
