#include "stats/option_effect.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

namespace ovik {
namespace {

/// Names of the options that have no effect.
std::set<std::string> barred(const FitOptions& options) {
    std::set<std::string> names;
    visit_fit_options(options, [&](const auto& option) {
        if (bar_of(options, option.words.name)) {
            names.emplace(option.words.name);
        }
    });
    return names;
}

/// Names of the options that page and checkpoint have.
std::set<std::string> told(const FitOptions& options) {
    std::set<std::string> names;
    visit_fit_options(options, [&](const auto& option) {
        if (is_told(options, option)) {
            names.emplace(option.words.name);
        }
    });
    return names;
}

using Names = std::set<std::string>;

TEST(BarOf, LeavesTheClassicalRunWithoutWhatIsOfOtherChoices) {
    EXPECT_EQ(barred({}), (Names{"neighbours", "hold_iter", "release_iter"}));
}

TEST(BarOf, IsUpBesideTheChoiceThatNeedsOtherOptions) {
    EXPECT_EQ(barred({.schedule = ScheduleKind::Annealed}),
              (Names{"neighbours", "stop_lying_iter", "mom_switch_iter", "momentum"}));
    EXPECT_EQ(barred({.affinity = AffinityKind::Uniform}),
              (Names{"perplexity", "multiscale", "hold_iter", "release_iter"}));
    EXPECT_EQ(barred({.multiscale = {10.0, 50.0}}),
              (Names{"perplexity", "neighbours", "hold_iter", "release_iter"}));
    EXPECT_EQ(barred({.metric = MetricKind::Precomputed}),
              (Names{"pca", "neighbours", "neighbour_search", "hold_iter", "release_iter"}));
    EXPECT_EQ(barred({.theta = 0.0}),
              (Names{"neighbours", "neighbour_search", "hold_iter", "release_iter"}));
}

TEST(BarOf, NamesTheOtherOptionAndTheCure) {
    const auto bar = bar_of({}, "hold_iter");
    ASSERT_TRUE(bar);
    EXPECT_EQ(bar->other, "schedule");
    EXPECT_EQ(bar->cure, "annealed");
    EXPECT_FALSE(bar_of({}, "theta"));
    EXPECT_FALSE(bar_of({}, "no_such_option"));
}

TEST(BarOf, NamesTheCureOfTheExactMethodAsItWasChosen) {
    const auto by_name = bar_of({.method = MethodKind::Exact}, "neighbour_search");
    ASSERT_TRUE(by_name);
    EXPECT_EQ(by_name->other, "method");
    EXPECT_EQ(by_name->cure, "barnes-hut");
    const auto by_theta = bar_of({.theta = 0.0}, "neighbour_search");
    ASSERT_TRUE(by_theta);
    EXPECT_EQ(by_theta->other, "theta");
    EXPECT_EQ(by_theta->cure, "0.5");
    EXPECT_FALSE(bar_of({.theta = 0.0, .method = MethodKind::Mesh}, "neighbour_search"));
}

TEST(BarOf, NamesOptionsThatThereAre) {
    const FitOptions presets;
    Names names;
    visit_fit_options(presets, [&names](const auto& option) { names.emplace(option.words.name); });
    for (const FitOptions& options : {FitOptions(),
                                      FitOptions{.metric = MetricKind::Precomputed},
                                      FitOptions{.affinity = AffinityKind::Uniform},
                                      FitOptions{.multiscale = {10.0}},
                                      FitOptions{.method = MethodKind::Mesh},
                                      FitOptions{.schedule = ScheduleKind::Annealed}}) {
        for (const std::string& name : names) {
            if (const auto bar = bar_of(options, name)) {
                EXPECT_TRUE(names.contains(std::string(bar->other))) << bar->other;
            }
        }
    }
}

TEST(IsTold, HasTheNumbersOfTheClassicalRunAlone) {
    EXPECT_EQ(told({}),
              (Names{"perplexity",
                     "theta",
                     "dimensions",
                     "max_iter",
                     "stop_lying_iter",
                     "mom_switch_iter",
                     "seed",
                     "learning_rate",
                     "exaggeration",
                     "start_spread",
                     "momentum",
                     "final_momentum"}));
}

TEST(IsTold, HasThetaWhereItIsTheAccuracy) {
    EXPECT_TRUE(told({.method = MethodKind::BarnesHut}).contains("theta"));
    EXPECT_TRUE(told({.method = MethodKind::BarnesHut}).contains("method"));
    EXPECT_TRUE(told({.theta = 0.0, .method = MethodKind::Exact}).contains("theta"));
    EXPECT_FALSE(told({.method = MethodKind::Exact}).contains("theta"));
    EXPECT_FALSE(told({.method = MethodKind::Mesh}).contains("theta"));
}

TEST(IsTold, HasWhatDiffersAndWhatBelongsToIt) {
    const Names names = told({.metric = MetricKind::Pearson,
                              .affinity = AffinityKind::Uniform,
                              .schedule = ScheduleKind::Annealed});
    for (const char* const name :
         {"metric", "affinity", "neighbours", "schedule", "hold_iter", "release_iter"}) {
        EXPECT_TRUE(names.contains(name)) << name;
    }
    for (const char* const name :
         {"perplexity", "multiscale", "stop_lying_iter", "momentum", "pca", "start", "stop_when"}) {
        EXPECT_FALSE(names.contains(name)) << name;
    }
}

}  // namespace
}  // namespace ovik
