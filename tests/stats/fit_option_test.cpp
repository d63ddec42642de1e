#include "stats/fit_option.h"

#include <cmath>
#include <limits>
#include <string>

#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(FitChoice, TakesItsNamesAlone) {
    StartKind kind = StartKind::Random;
    const FitChoice<StartKind> option{kind, StartKind::Random, {}};
    EXPECT_TRUE(option.isPreset());
    EXPECT_TRUE(option.set("pca"));
    EXPECT_EQ(kind, StartKind::Pca);
    EXPECT_EQ(option.name(), "pca");
    EXPECT_FALSE(option.isPreset());
    for (const char* const name : {"", "PCA", "pc", "pca "}) {
        EXPECT_FALSE(option.set(name));
    }
    EXPECT_EQ(kind, StartKind::Pca);
}

TEST(FitChoice, WithAnOpenEndDoesNotOfferItsLastName) {
    StartKind kind = StartKind::Random;
    const FitChoice<StartKind> closed{kind, StartKind::Random, {}};
    EXPECT_THAT(closed.givenNames(), testing::ElementsAre("random", "pca", "sample", "given"));
    const FitChoice<StartKind> open{kind, StartKind::Random, {}, "coordinates"};
    EXPECT_THAT(open.givenNames(), testing::ElementsAre("random", "pca", "sample"));
    EXPECT_THAT(open.names(), testing::ElementsAre("random", "pca", "sample", "given"));
}

TEST(FitChoice, HasNoNameForWhatIsNoMember) {
    MetricKind kind = static_cast<MetricKind>(ChoiceNames<MetricKind>::kAll.size());
    const FitChoice<MetricKind> option{kind, MetricKind::Euclidean, {}};
    EXPECT_EQ(option.name(), "");
    EXPECT_FALSE(option.isInRange());
    kind = MetricKind::Precomputed;
    EXPECT_EQ(option.name(), "precomputed");
    EXPECT_TRUE(option.isInRange());
}

TEST(FitList, HoldsDifferentNumbersOfItsRange) {
    NumberList numbers;
    const FitList<NumberList> option{numbers, OptionRange<double>{.least = 1.0}, {}};
    EXPECT_TRUE(option.isInRange());
    EXPECT_TRUE(option.isPreset());
    numbers = {1.0, 50.0};
    EXPECT_TRUE(option.isInRange());
    EXPECT_FALSE(option.isPreset());
    numbers = {50.0, 10.0, 50.0};
    EXPECT_FALSE(option.isInRange());
    numbers = {10.0, 0.5};
    EXPECT_FALSE(option.isInRange());
    numbers = {std::nan("")};
    EXPECT_FALSE(option.isInRange());
}

TEST(OptionRange, HoldsItsEndsUnlessItSaysOtherwise) {
    constexpr OptionRange<double> kClosed{.least = 1.0, .most = 2.0};
    EXPECT_TRUE(kClosed.holds(1.0));
    EXPECT_TRUE(kClosed.holds(2.0));
    EXPECT_FALSE(kClosed.holds(std::nextafter(1.0, 0.0)));
    EXPECT_FALSE(kClosed.holds(std::nextafter(2.0, 3.0)));
    constexpr OptionRange<double> kOpen{
        .least = 1.0, .most = 2.0, .holds_least = false, .holds_most = false};
    EXPECT_FALSE(kOpen.holds(1.0));
    EXPECT_FALSE(kOpen.holds(2.0));
    EXPECT_TRUE(kOpen.holds(std::nextafter(1.0, 2.0)));
    EXPECT_TRUE(kOpen.holds(std::nextafter(2.0, 1.0)));
}

TEST(OptionRange, HoldsNeitherNanNorInfinities) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr OptionRange<double> kAll{.least = -std::numeric_limits<double>::max()};
    for (const double value : {std::nan(""), kInfinity, -kInfinity}) {
        EXPECT_FALSE(kAll.holds(value));
    }
    EXPECT_TRUE(kAll.holds(std::numeric_limits<double>::max()));
    EXPECT_TRUE(kAll.holds(-0.0));
}

TEST(OptionRange, ReachesTheLargestNumberByDefault) {
    constexpr OptionRange<int> kRange{.least = 3};
    EXPECT_TRUE(kRange.holds(3));
    EXPECT_TRUE(kRange.holds(INT_MAX));
    EXPECT_FALSE(kRange.holds(2));
    EXPECT_FALSE(kRange.holds(INT_MIN));
}

}  // namespace
}  // namespace ovik
