#include "plots/colour_bar.h"

#include <cmath>
#include <limits>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> texts_of(double least, double most) {
    std::vector<std::string> texts;
    for (const BarNumber& number : colour_bar({"", least, most}).numbers) {
        texts.push_back(number.text);
    }
    return texts;
}

TEST(ColourBar, HasRoundNumbers) {
    EXPECT_THAT(texts_of(-4.6, 4.6), ElementsAre("-4", "-3", "-2", "-1", "0", "1", "2", "3", "4"));
    EXPECT_THAT(texts_of(0.1, 0.42),
                ElementsAre("0.10", "0.15", "0.20", "0.25", "0.30", "0.35", "0.40"));
    EXPECT_THAT(texts_of(0, 100),
                ElementsAre("0", "10", "20", "30", "40", "50", "60", "70", "80", "90", "100"));
    EXPECT_THAT(texts_of(1e-8, 3.5e-8),
                ElementsAre("1e-08", "1.5e-08", "2e-08", "2.5e-08", "3e-08", "3.5e-08"));
    EXPECT_THAT(texts_of(1234567, 1235567),
                ElementsAre("1234600",
                            "1234700",
                            "1234800",
                            "1234900",
                            "1235000",
                            "1235100",
                            "1235200",
                            "1235300",
                            "1235400",
                            "1235500"));
}

TEST(ColourBar, HasFewNumbersWhereItIsShort) {
    EXPECT_EQ(colour_bar({"", 0, 4.6}, 3).numbers.size(), 3U);
    EXPECT_EQ(colour_bar({"", -4.6, 4.6}, 5).numbers.size(), 5U);
    // Two at least.
    EXPECT_EQ(colour_bar({"", -4.6, 4.6}, 2).numbers.size(), 5U);
}

TEST(ColourBar, HasNoTwoNumbersAlike) {
    for (const double most : {1e-290, 1e-5, 0.37, 1.0, 2.9, 77.0, 1e6, 1e7, 1e300}) {
        for (const double share : {-1.0, 0.0, 0.9, 0.999999}) {
            const ColourBar bar = colour_bar({"", share * most, most});
            std::set<std::string> texts;
            for (const BarNumber& number : bar.numbers) {
                texts.insert(number.text);
                EXPECT_NEAR(std::stod(number.text), number.at, 1e-3 * (bar.most - bar.least));
                EXPECT_GE(number.at, bar.least - 1e-9 * (bar.most - bar.least));
                EXPECT_LE(number.at, bar.most + 1e-9 * (bar.most - bar.least));
            }
            EXPECT_EQ(texts.size(), bar.numbers.size()) << most << " " << share;
            EXPECT_GE(texts.size(), 3U) << most << " " << share;
        }
    }
}

TEST(ColourBar, OfOneNumberHasTwoEnds) {
    const ColourBar bar = colour_bar({"", 3, 3});
    EXPECT_EQ(bar.least, 0.0);
    EXPECT_EQ(bar.most, 6.0);
    EXPECT_EQ(colour_bar({"", 0, 0}).least, -1.0);
}

TEST(ColourBar, OfMoreOrLessThanADoubleHoldsHasNoNumbers) {
    const double huge = std::numeric_limits<double>::max();
    EXPECT_THAT(colour_bar({"", -huge, huge}).numbers, IsEmpty());
    EXPECT_THAT(colour_bar({"", 0, 5e-324}).numbers, IsEmpty());
    EXPECT_THAT(colour_bar({"", 1e6, std::nextafter(1e6, 2e6)}).numbers, IsEmpty());
}

TEST(NumbersWidth, IsThatOfTheWidest) {
    EXPECT_DOUBLE_EQ(numbers_width({0, 1, {{0, "0"}, {1, "0.10"}}}, 1000), 3 * 556.0 + 278.0);
    EXPECT_DOUBLE_EQ(numbers_width({}, 1000), 0.0);
}

}  // namespace
}  // namespace ovik
