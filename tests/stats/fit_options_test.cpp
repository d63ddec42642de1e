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
        EXPECT_TRUE(option.isPreset()) << option.words.name;
        EXPECT_TRUE(option.isInRange()) << option.words.name;
        if constexpr (requires { option.range; }) {
            EXPECT_LT(option.range.least, option.range.most) << option.words.name;
        }
    });
}

/// Sets an option to a value that it may have and that is not the preset.
template <typename Option>
void set_to_another(const Option& option) {
    if constexpr (requires { option.value.empty(); }) {
        option.value = {2.0};
    } else if constexpr (requires { option.names(); }) {
        EXPECT_TRUE(option.set(option.names()[1]));
    } else {
        const bool is_least = option.preset == option.range.least;
        option.value = is_least && option.range.holds_most ? option.range.most
                       : is_least                          ? option.range.most / 2
                                                           : option.range.least;
    }
}

TEST(FitOptions, AreWrittenThroughTheVisitor) {
    FitOptions options;
    std::set<const void*> places;
    std::size_t bytes = 0;
    visit_fit_options(options, [&](const auto& option) {
        set_to_another(option);
        EXPECT_FALSE(option.isPreset()) << option.words.name;
        EXPECT_TRUE(places.insert(&option.value).second) << option.words.name;
        bytes += sizeof option.value;
    });
    // None is left out: but for padding and the rate that is automatic there is nothing else.
    bytes += sizeof options.automatic_rate;
    EXPECT_LE(bytes, sizeof options);
    constexpr std::size_t kMostPadding = 3 * (alignof(FitOptions) - sizeof(int));
    EXPECT_GE(bytes + kMostPadding + alignof(FitOptions), sizeof options);
    EXPECT_EQ(options.perplexity, 1.0);
    EXPECT_EQ(options.theta, 0.0);
    EXPECT_EQ(options.out_dims, 50);
    EXPECT_EQ(options.max_iter, 1);
    EXPECT_EQ(options.stop_lying_iter, 0);
    EXPECT_EQ(options.mom_switch_iter, 0);
    EXPECT_EQ(options.metric, MetricKind::Pearson);
    EXPECT_EQ(options.multiscale, (NumberList{2.0}));
}

TEST(FitOptions, HaveALearningRateThatMayBeAutomatic) {
    FitOptions options;
    int automatic = 0;
    visit_fit_options(options, [&](const auto& option) {
        if constexpr (requires { option.automatic; }) {
            if (option.automatic != nullptr) {
                EXPECT_EQ(option.words.name, "learning_rate");
                *option.automatic = true;
                EXPECT_TRUE(option.isAutomatic());
                EXPECT_FALSE(option.isPreset());
                ++automatic;
            }
        }
    });
    EXPECT_EQ(automatic, 1);
    EXPECT_TRUE(options.automatic_rate);
}

TEST(FitOptions, ThatAreConstAreReadWithTheirOwnValues) {
    const FitOptions options{.perplexity = 7.0,
                             .out_dims = 51,
                             .metric = static_cast<MetricKind>(5),
                             .multiscale = {3.0}};
    int seen = 0;
    visit_fit_options(options, [&](const auto& option) {
        static_assert(std::is_const_v<std::remove_reference_t<decltype(option.value)>>);
        if constexpr (requires { option.value.empty(); }) {
            EXPECT_EQ(option.value, options.multiscale);
            ++seen;
        } else if (option.words.name == "perplexity") {
            EXPECT_EQ(static_cast<double>(option.value), 7.0);
            EXPECT_EQ(static_cast<double>(option.preset), FitOptions().perplexity);
            EXPECT_TRUE(option.isInRange());
            ++seen;
        } else if (option.words.name == "dimensions") {
            EXPECT_EQ(static_cast<int>(option.value), 51);
            EXPECT_FALSE(option.isInRange());
            ++seen;
        } else if (option.words.name == "metric") {
            EXPECT_FALSE(option.isInRange());
            ++seen;
        }
    });
    EXPECT_EQ(seen, 4);
}

TEST(FitOptions, DecideTheStatesOfAFitButForItsEnd) {
    FitOptions options;
    visit_fit_options(options, [](const auto& option) {
        EXPECT_EQ(option.words.decides_states,
                  option.words.name != "max_iter" && option.words.name != "stop_when")
            << option.words.name;
    });
}

}  // namespace
}  // namespace ovik
