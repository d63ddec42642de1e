#include "stats/option_checks.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/preset.h"
#include "util/input_error.h"

namespace ovik {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// Why options do not fit each other; empty if they do.
std::string refusal(const FitOptions& options) {
    try {
        check_options_together(options, source_of(options));
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

/// Why a matrix cannot bear some options; empty if it does.
std::string refusal(const FitOptions& options, std::size_t rows, std::size_t columns) {
    try {
        check_options_for(options, rows, columns, source_of(options));
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(CheckOptionsTogether, AcceptsTheClassicalRunAndEachChoiceByItself) {
    EXPECT_EQ(refusal({}), "");
    EXPECT_EQ(refusal({.metric = MetricKind::Spearman}), "");
    EXPECT_EQ(refusal({.metric = MetricKind::Precomputed}), "");
    EXPECT_EQ(refusal({.pca = 5, .start = StartKind::Pca}), "");
    EXPECT_EQ(refusal({.affinity = AffinityKind::Uniform, .neighbours = 10}), "");
    EXPECT_EQ(refusal({.multiscale = {10.0, 50.0}}), "");
    EXPECT_EQ(
        refusal({.schedule = ScheduleKind::Annealed, .hold_iter = 50, .automatic_rate = true}), "");
    EXPECT_EQ(refusal({.stop_when = 0.0002}), "");
    EXPECT_EQ(refusal({.theta = 0.25, .method = MethodKind::BarnesHut}), "");
    EXPECT_EQ(refusal({.method = MethodKind::Mesh}), "");
    EXPECT_EQ(refusal({.method = MethodKind::Exact}), "");
    EXPECT_EQ(refusal({.method = MethodKind::Exact, .out_dims = 3}), "");
    // Both say the same.
    EXPECT_EQ(refusal({.theta = 0.0, .method = MethodKind::Exact}), "");
}

TEST(CheckOptionsTogether, RefusesAMethodThatContradictsTheta) {
    EXPECT_EQ(refusal({.theta = 0.25, .method = MethodKind::Exact}),
              "theta has no effect beside method exact\nLeave theta out, or give method "
              "barnes-hut.");
    for (const double theta : {0.0, 0.25}) {
        EXPECT_EQ(refusal({.theta = theta, .method = MethodKind::Mesh}),
                  "theta has no effect beside method mesh\nLeave theta out, or give method "
                  "barnes-hut.");
    }
    EXPECT_EQ(refusal({.theta = 0.0, .method = MethodKind::BarnesHut}),
              "method barnes-hut does not go with theta 0, which stands for the exact method\n"
              "Give a theta above 0, such as 0.5, or method exact.");
}

TEST(CheckOptionsTogether, RefusesAMeshUnderMapsOfOtherDimensions) {
    EXPECT_EQ(refusal({.method = MethodKind::Mesh, .out_dims = 3}),
              "method mesh does not go with dimensions 3: the mesh lies under maps in two "
              "dimensions\nGive dimensions 2, or method barnes-hut.");
}

TEST(CheckOptionsTogether, RefusesAStopBehindTheLastIteration) {
    EXPECT_EQ(refusal({.max_iter = 301, .stop_when = 0.0002}), "");
    EXPECT_EQ(
        refusal({.max_iter = 300, .stop_when = 0.0002}),
        "stop_when 0.0002 has no effect beside max_iter 300: gains are looked at from iteration "
        "300 on, when exaggeration has ended\nRun longer than that, or leave stop_when 0.0002 "
        "out.");
}

TEST(CheckOptionsTogether, RefusesWhatHasNoEffectWithTheCure) {
    EXPECT_EQ(refusal({.perplexity = 30.0, .affinity = AffinityKind::Uniform}),
              "perplexity has no effect beside affinity uniform\n"
              "Leave perplexity out, or give affinity perplexity.");
    EXPECT_EQ(refusal({.perplexity = 30.0, .multiscale = {10.0, 50.0}}),
              "perplexity has no effect beside multiscale 10,50\n"
              "Leave perplexity out, or the other one.");
    EXPECT_EQ(refusal({.neighbours = 10}),
              "neighbours has no effect beside affinity perplexity\n"
              "Leave neighbours out, or give affinity uniform.");
    EXPECT_THAT(refusal({.affinity = AffinityKind::Uniform, .multiscale = {10.0}}),
                StartsWith("multiscale has no effect beside affinity uniform\n"));
    EXPECT_THAT(refusal({.hold_iter = 5}),
                StartsWith("hold_iter has no effect beside schedule classic\n"));
    EXPECT_THAT(refusal({.release_iter = 5}), StartsWith("release_iter has no effect"));
    for (const FitOptions& options :
         {FitOptions{.stop_lying_iter = 5, .schedule = ScheduleKind::Annealed},
          FitOptions{.mom_switch_iter = 5, .schedule = ScheduleKind::Annealed},
          FitOptions{.momentum = 0.7, .schedule = ScheduleKind::Annealed}}) {
        EXPECT_THAT(refusal(options), HasSubstr("has no effect beside schedule annealed\n"));
    }
    EXPECT_THAT(refusal({.metric = MetricKind::Precomputed, .pca = 5}),
                StartsWith("pca has no effect beside metric precomputed\n"));
}

TEST(CheckOptionsTogether, RefusesComponentsOfDistances) {
    EXPECT_EQ(refusal({.metric = MetricKind::Precomputed, .start = StartKind::Pca}),
              "start pca does not go with metric precomputed: distances have no components\n"
              "Leave one of them out.");
}

TEST(CheckOptionsTogether, RefusesASampleOfDistances) {
    EXPECT_THAT(refusal({.metric = MetricKind::Precomputed, .start = StartKind::Sample}),
                StartsWith("start sample does not go with metric precomputed: "));
    EXPECT_EQ(refusal({.metric = MetricKind::Pearson, .start = StartKind::Sample}), "");
}

TEST(CheckOptionsTogether, WritesOptionsAsTheSourceDoes) {
    const OptionSource source{[](std::string_view name) { return name == "hold_iter"; },
                              [](const OptionWords& words, const std::string& value) {
                                  return std::string(words.python) + "=" + value;
                              }};
    try {
        // What is as preset may be given all the same.
        check_options_together({}, source);
        FAIL();
    } catch (const InputError& error) {
        EXPECT_STREQ(error.what(),
                     "hold_iter= has no effect beside schedule=classic\n"
                     "Leave hold_iter= out, or give schedule=annealed.");
    }
}

/// Where options come from that count as not given where they have their default.
OptionSource beside_refined(const std::vector<std::string>& given) {
    return {[given](std::string_view name) {
                return std::find(given.begin(), given.end(), name) != given.end();
            },
            source_of({}).spell,
            "preset refined"};
}

TEST(CheckOptionsTogether, HasTheCureToLeaveAPresetThatADefaultDoesNotUndo) {
    const auto refusal_beside_refined = [](const FitOptions& options,
                                           const std::vector<std::string>& given) -> std::string {
        try {
            check_options_together(options, beside_refined(given));
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    };
    FitOptions options = refined_options(500);
    options.stop_lying_iter = 100;
    EXPECT_EQ(refusal_beside_refined(options, {"stop_lying_iter"}),
              "stop_lying_iter has no effect beside schedule annealed\n"
              "Leave stop_lying_iter out, or leave preset refined out.");
    // What is given can be given otherwise.
    EXPECT_THAT(refusal_beside_refined(options, {"stop_lying_iter", "schedule"}),
                HasSubstr("or give schedule classic."));
    options = refined_options(500);
    options.neighbours = 10;
    EXPECT_THAT(refusal_beside_refined(options, {"neighbours"}),
                HasSubstr("or give affinity uniform."));
}

TEST(CheckOptionsFor, HasTheCureToLeaveAPresetThatADefaultDoesNotUndo) {
    const auto refusal_beside_refined = [](const FitOptions& options,
                                           std::size_t columns) -> std::string {
        try {
            check_options_for(options, 30, columns, beside_refined({"dims", "pca"}));
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    };
    FitOptions options = refined_options(30);
    EXPECT_THAT(refusal_beside_refined(options, 1),
                HasSubstr("\nGive fewer dimensions, or leave preset refined out."));
    options.pca = 1;
    EXPECT_THAT(refusal_beside_refined(options, 6),
                HasSubstr("\nGive more than pca 1, or leave preset refined out."));
}

TEST(CheckOptionsFor, RefusesNeighboursThatARowHasNot) {
    const FitOptions all{.affinity = AffinityKind::Uniform, .neighbours = 19};
    EXPECT_EQ(refusal(all, 21, 5), "");
    EXPECT_THAT(refusal(all, 20, 5), StartsWith("neighbours 19: a row has 19 others"));
    EXPECT_EQ(refusal({}, 10, 5), "");
}

TEST(CheckOptionsFor, RefusesPerplexitiesThatTheRowsCannotBear) {
    const FitOptions options{.multiscale = {5.0, 19.0}};
    EXPECT_EQ(refusal(options, 21, 5), "");
    EXPECT_THAT(refusal(options, 20, 5), StartsWith("multiscale 5,19: a row has 19 others"));
}

TEST(CheckOptionsFor, RefusesAStartAlongFewerComponentsThanTheMapHas) {
    EXPECT_EQ(refusal({.out_dims = 3, .start = StartKind::Pca}, 4, 3), "");
    EXPECT_THAT(
        refusal({.out_dims = 3, .start = StartKind::Pca}, 3, 30),
        StartsWith("start pca needs a component for each of the 3 dimensions of the map, and "
                   "the matrix has 3 rows and 30 columns\n"));
    EXPECT_THAT(refusal({.out_dims = 3, .start = StartKind::Pca}, 30, 2), HasSubstr("2 columns"));
    EXPECT_THAT(refusal({.out_dims = 3, .pca = 2, .start = StartKind::Pca}, 30, 20),
                HasSubstr("Give more than pca 2, or take the random start."));
}

TEST(CheckOptionsFor, RefusesASampleOfFewRowsOrAlongTooFewComponents) {
    EXPECT_EQ(refusal({.start = StartKind::Sample}, 2000, 5), "");
    EXPECT_THAT(refusal({.start = StartKind::Sample}, 1999, 5),
                StartsWith("start sample is for 2000 rows or more, and the matrix has 1999\n"));
    EXPECT_THAT(refusal({.out_dims = 3, .start = StartKind::Sample}, 3000, 2),
                HasSubstr("needs a component for each of the 3 dimensions"));
}

TEST(CheckOptionsFor, RefusesComponentsThatReduceNothing) {
    EXPECT_EQ(refusal({.pca = 5}, 20, 6), "");
    EXPECT_THAT(refusal({.pca = 6}, 20, 6),
                StartsWith("pca 6: the matrix has 20 rows and 6 columns, "));
    EXPECT_THAT(refusal({.pca = 20}, 20, 60), StartsWith("pca 20: "));
}

}  // namespace
}  // namespace ovik
