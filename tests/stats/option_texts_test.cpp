#include "stats/option_texts.h"

#include <climits>
#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(PlainNumber, IsAsAReaderWritesIt) {
    EXPECT_EQ(plain_number(30.0), "30");
    EXPECT_EQ(plain_number(12.75), "12.75");
    EXPECT_EQ(plain_number(0.0), "0");
    EXPECT_EQ(plain_number(-2.5), "-2.5");
    EXPECT_EQ(plain_number(1e9), "1e9");
    EXPECT_EQ(plain_number(1.5e300), "1.5e300");
    EXPECT_EQ(plain_number(1e20), "1e20");
    EXPECT_EQ(plain_number(0.0001), "0.0001");
    EXPECT_EQ(plain_number(1e6), "1e6");
    EXPECT_EQ(plain_number(100000.0), "100000");
    EXPECT_EQ(plain_number(5e-324), "5e-324");
    // What is small keeps the sign of its exponent.
    EXPECT_EQ(plain_number(1e-12), "1e-12");
    EXPECT_EQ(plain_number(0.1 + 0.2), "0.30000000000000004");
}

TEST(PlainNumber, IsThatOfAWholeNumber) {
    EXPECT_EQ(plain_number(0), "0");
    EXPECT_EQ(plain_number(1000000000), "1000000000");
    EXPECT_EQ(plain_number(INT_MIN), "-2147483648");
}

TEST(RangeText, SaysWhichRealNumbers) {
    EXPECT_EQ(range_text(OptionRange<double>{.least = 1.0, .most = 1e9}),
              "at least 1, at most 1e9");
    EXPECT_EQ(range_text(OptionRange<double>{.least = 0.0}), "at least 0");
    EXPECT_EQ(range_text(OptionRange<double>{.least = 0.0, .holds_least = false}), "above 0");
    EXPECT_EQ(range_text(OptionRange<double>{.least = 0.0, .most = 1.0, .holds_most = false}),
              "at least 0, below 1");
}

TEST(RangeText, SaysWhichWholeNumbers) {
    EXPECT_EQ(range_text(OptionRange<int>{.least = 2, .most = 50}), "2 to 50");
    EXPECT_EQ(range_text(OptionRange<int>{.least = 0}), "at least 0");
    EXPECT_EQ(range_text(OptionRange<int>{.least = 0, .most = INT_MAX - 1}), "0 to 2147483646");
}

TEST(PresetText, SaysWhatItCounts) {
    OptionWords words;
    EXPECT_EQ(preset_text("0.5", words), "0.5");
    words.unit = "iterations";
    EXPECT_EQ(preset_text("250", words), "250 iterations");
}

TEST(RequirementText, SaysWhatAnOptionShouldBe) {
    EXPECT_EQ(requirement_text(OptionRange<double>{.least = 0.5, .most = 1.0, .holds_most = false}),
              "a number at least 0.5, below 1");
    EXPECT_EQ(requirement_text(OptionRange<int>{.least = 2, .most = 50}),
              "a whole number from 2 to 50");
    EXPECT_EQ(requirement_text(OptionRange<int>{.least = 0}),
              "a whole number from 0 to 2147483647");
}

}  // namespace
}  // namespace ovik
