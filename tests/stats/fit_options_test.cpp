#include "stats/fit_options.h"

#include <cctype>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <type_traits>

#include <climits>
#include <gtest/gtest.h>

namespace ovik {
namespace {

/// The flags between the commas.
std::set<std::string> flags_of(const OptionWords& words) {
    std::set<std::string> flags;
    const std::string all(words.flags);
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = all.find(',', begin);
        flags.insert(all.substr(begin, end - begin));
    }
    return flags;
}

TEST(FitOptions, HaveNamesOfTheirOwn) {
    std::set<std::string> names;
    std::set<std::string> python;
    std::set<std::string> titles;
    std::set<std::string> flags;
    FitOptions options;
    visit_fit_options(options, [&](const auto& option) {
        const OptionWords& words = option.words;
        EXPECT_TRUE(names.emplace(words.name).second) << words.name;
        EXPECT_TRUE(python.emplace(words.python).second) << words.python;
        EXPECT_TRUE(titles.emplace(words.title).second) << words.title;
        for (const std::string& flag : flags_of(words)) {
            EXPECT_TRUE(flags.insert(flag).second) << flag;
        }
    });
}

TEST(FitOptions, HaveWordsThatFrontEndsCanTakeAsTheyAre) {
    FitOptions options;
    visit_fit_options(options, [](const auto& option) {
        const OptionWords& words = option.words;
        SCOPED_TRACE(words.name);
        // Checkpoints keep "name=value" by lines.
        EXPECT_EQ(words.name.find_first_of("=\n"), std::string_view::npos);
        for (const char letter : words.python) {
            EXPECT_TRUE(std::islower(static_cast<unsigned char>(letter)) != 0 || letter == '_');
        }
        bool has_long_flag = false;
        for (const std::string& flag : flags_of(words)) {
            const bool is_long = flag.starts_with("--");
            has_long_flag = has_long_flag || is_long;
            EXPECT_TRUE(is_long ? flag.size() > 3 : flag.size() == 2 && flag[0] == '-') << flag;
        }
        EXPECT_TRUE(has_long_flag);
        EXPECT_FALSE(words.title.empty());
        ASSERT_FALSE(words.sentence.empty());
        EXPECT_NE(words.sentence.back(), '.');
        EXPECT_NE(std::isupper(static_cast<unsigned char>(words.sentence.front())), 0);
    });
}

TEST(FitOptions, StartFromPresetsInTheirRange) {
    FitOptions options;
    visit_fit_options(options, [](const auto& option) {
        EXPECT_EQ(option.value, option.preset) << option.words.name;
        EXPECT_TRUE(option.isInRange()) << option.words.name;
        EXPECT_LT(option.range.least, option.range.most) << option.words.name;
    });
}

TEST(FitOptions, AreWrittenThroughTheVisitor) {
    FitOptions options;
    std::set<const void*> places;
    std::size_t bytes = 0;
    visit_fit_options(options, [&](const auto& option) {
        option.value = option.range.least;
        EXPECT_TRUE(places.insert(&option.value).second) << option.words.name;
        bytes += sizeof option.value;
    });
    // None is left out: but for padding there is nothing else.
    EXPECT_LE(bytes, sizeof options);
    EXPECT_GT(bytes + alignof(FitOptions), sizeof options);
    EXPECT_EQ(options.perplexity, 1.0);
    EXPECT_EQ(options.theta, 0.0);
    EXPECT_EQ(options.out_dims, 2);
    EXPECT_EQ(options.max_iter, 1);
    EXPECT_EQ(options.stop_lying_iter, 0);
    EXPECT_EQ(options.mom_switch_iter, 0);
}

TEST(FitOptions, ThatAreConstAreReadWithTheirOwnValues) {
    const FitOptions options{.perplexity = 7.0, .out_dims = 51};
    int seen = 0;
    visit_fit_options(options, [&](const auto& option) {
        static_assert(std::is_const_v<std::remove_reference_t<decltype(option.value)>>);
        if (option.words.name == "perplexity") {
            EXPECT_EQ(option.value, 7.0);
            EXPECT_EQ(option.preset, FitOptions().perplexity);
            EXPECT_TRUE(option.isInRange());
            ++seen;
        } else if (option.words.name == "dimensions") {
            EXPECT_EQ(option.value, 51);
            EXPECT_FALSE(option.isInRange());
            ++seen;
        }
    });
    EXPECT_EQ(seen, 2);
}

TEST(FitOptions, DecideTheStatesOfAFitButForItsEnd) {
    FitOptions options;
    visit_fit_options(options, [](const auto& option) {
        EXPECT_EQ(option.words.decides_states, option.words.name != "max_iter")
            << option.words.name;
    });
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
