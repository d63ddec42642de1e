#include "stats/option_texts.h"

#include <string>
#include <string_view>
#include <vector>

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

/// Calls a function with the option of a name.
template <typename Function>
void with_option(const FitOptions& options, std::string_view name, const Function& function) {
    int seen = 0;
    visit_fit_options(options, [&](const auto& option) {
        if (option.words.name == name) {
            function(option);
            ++seen;
        }
    });
    EXPECT_EQ(seen, 1) << name;
}

/// Value, preset and range of an option, and what it should be.
std::vector<std::string> texts(const FitOptions& options, std::string_view name) {
    std::vector<std::string> all;
    with_option(options, name, [&all](const auto& option) {
        all = {
            value_text(option), preset_text(option), range_text(option), requirement_text(option)};
    });
    return all;
}

using Texts = std::vector<std::string>;

TEST(OptionTexts, OfANumberThatTheFitMayCompute) {
    EXPECT_EQ(texts({.learning_rate = 50.0}, "learning_rate"),
              (Texts{"50",
                     "200",
                     "above 0, at most 1e9, or auto",
                     "a number above 0, at most 1e9, or auto"}));
    EXPECT_EQ(texts({.automatic_rate = true}, "learning_rate").front(), "auto");
    EXPECT_EQ(texts({.theta = 0.25}, "theta"),
              (Texts{"0.25", "0.5", "at least 0", "a number at least 0"}));
}

TEST(OptionTexts, OfAChoiceAreItsNames) {
    EXPECT_EQ(texts({.schedule = ScheduleKind::Annealed}, "schedule"),
              (Texts{"annealed", "classic", "classic or annealed", "classic or annealed"}));
    EXPECT_EQ(texts({.start = StartKind::Given}, "start"),
              (Texts{"given",
                     "random",
                     "random, pca, sample or coordinates",
                     "random, pca, sample or coordinates"}));
    with_option({}, "start", [](const auto& option) {
        if constexpr (requires { option.names(); }) {
            EXPECT_EQ(requirement_text(option, "FILE"), "random, pca, sample or FILE");
        }
    });
}

TEST(OptionTexts, OfAListAreItsNumbers) {
    EXPECT_EQ(texts({.multiscale = {10.0, 12.5}}, "multiscale"),
              (Texts{"10,12.5",
                     "none",
                     "each at least 1, at most 1e9",
                     "up to 8 different numbers, each at least 1, at most 1e9"}));
    EXPECT_EQ(texts({}, "multiscale").front(), "");
}

TEST(AlternativesText, HasOneWordForTheLast) {
    EXPECT_EQ(alternatives_text(Texts{}), "");
    EXPECT_EQ(alternatives_text(Texts{"a"}), "a");
    EXPECT_EQ(alternatives_text(Texts{"a", "b"}), "a or b");
    EXPECT_EQ(alternatives_text(Texts{"a", "b", "c"}), "a, b or c");
}

TEST(LongName, IsThatWithTwoDashes) {
    OptionWords words;
    words.flags = "-i,--max-iter";
    EXPECT_EQ(long_name(words), "max-iter");
    words.flags = "--seed";
    EXPECT_EQ(long_name(words), "seed");
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
