#include "stats/fit_console.h"

#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/console.h"

#include "tests/support/recording_sink.h"

namespace ovik {
namespace {

using testing::HasSubstr;

struct Printed {
    std::string out;
    std::string err;
};

Printed printed(const std::function<void()>& print) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    print();
    std::fflush(stdout);
    std::string out = testing::internal::GetCapturedStdout();
    return {out, testing::internal::GetCapturedStderr()};
}

std::string launched(const FitOptions& options, int N) {
    return printed([&] { print_launch(options, N); }).out;
}

TEST(PrintLaunch, TellsSeedAndOptions) {
    EXPECT_EQ(launched({.perplexity = 12.75, .theta = 0.25}, 1000),
              "-- Random seed:  11\n"
              "-- Launching t-SNE at perplexity = 12.75 and theta = 0.25\n");
}

TEST(PrintLaunch, TellsOfOtherAffinitiesThanThoseOfOnePerplexity) {
    FitOptions options;
    options.affinity = AffinityKind::Uniform;
    EXPECT_EQ(launched(options, 30),
              "-- Random seed:  11\n"
              "-- Launching t-SNE with uniform affinities of 15 neighbours and theta = 0.50\n");
    options.method = MethodKind::Mesh;
    EXPECT_THAT(launched(options, 30),
                HasSubstr("uniform affinities of 15 neighbours by the method mesh\n"));
}

TEST(PrintLaunch, TellsOfAPerplexityThatTheRowsCannotBear) {
    constexpr const char* kComplaint = "perplexity is too large for the number of data points!";
    // Three times the perplexity may be all others, and no more.
    EXPECT_THAT(launched({.perplexity = 10.0}, 31), testing::Not(HasSubstr(kComplaint)));
    const std::string out = launched({.perplexity = 10.0}, 30);
    EXPECT_THAT(out,
                HasSubstr("-- Random seed:  11\n"
                          "-- \x1b[31mError: perplexity is too large for the number of data "
                          "points! It should be <= 9.6\x1b[0m\n"
                          "-- Launching"));
    EXPECT_THAT(launched({.perplexity = 1.0}, 0), HasSubstr(kComplaint));
}

TEST(ConsoleNotes, GoWhereTheyBelong) {
    const FitNotes notes = console_notes(5.0);

    const struct {
        FitNote note;
        const char* out;
        const char* err;
    } kCases[] = {
        {FitNote::SimilaritiesBegin, "-- Computing similarities between inputs\n", ""},
        {FitNote::ExactMethod, "", "Exact?"},
        {FitNote::Symmetrizing, "", "Symmetrizing...\n"},
        {FitNote::PerplexityAboveNeighbours, "", "Perplexity should be lower than K!\n"},
        {FitNote::NeighbourIndexBuilt, "-- Building tree ...\n", ""},
    };

    for (const auto& [note, out, err] : kCases) {
        const Printed shown = printed([&, sent = note] { notes(sent); });
        EXPECT_EQ(shown.out, out);
        EXPECT_EQ(shown.err, err);
    }
}

TEST(ConsoleNotes, LogThePerplexityAroundTheDistances) {
    const test::RecordingSink sink;
    const FitNotes notes = console_notes(12.75);
    EXPECT_EQ(printed([&] { notes(FitNote::DistancesBegin); }).out, "");
    EXPECT_EQ(printed([&] { notes(FitNote::DistancesDone); }).out, "");
    ASSERT_EQ(sink.lines.size(), 2U);
    for (const auto& line : sink.lines) {
        EXPECT_EQ(line.severity, google::GLOG_INFO);
        EXPECT_EQ(line.file, "stats/tsne");
        EXPECT_EQ(line.message, "12.75");
    }
    EXPECT_EQ(sink.lines[0].line, 639);
    EXPECT_EQ(sink.lines[1].line, 641);
}

TEST(ConsoleNotes, SayThatAnApproximateSearchBecomesExactAndTheCure) {
    const std::string text = printed([] { console_notes(30.0)(FitNote::SearchIsExact); }).out;
    EXPECT_THAT(text, HasSubstr("The search for neighbours is exact"));
    EXPECT_THAT(text, HasSubstr("--pca"));
}

TEST(PrintRecall, TellsTheRecallAndWarnsOfALowOne) {
    EXPECT_EQ(printed([] {
                  print_recall({0.98712, 1000});
              }).out,
              "-- Approximate neighbours: 98.7 % of the nearest, of 1000 rows\n");
    const std::string low = printed([] { print_recall({0.75, 1000}); }).out;
    EXPECT_THAT(low, HasSubstr("75.0 % of the nearest"));
    EXPECT_THAT(low, HasSubstr("recall of the neighbours is low"));
    EXPECT_THAT(low, HasSubstr("--neighbour-search exact"));
}

TEST(PrintProgress, RedrawsTheBarWithTheCost) {
    const IterationReport reached{.iteration = 250, .max_iter = 1000, .cost = 1.23456789};
    constexpr const char* kBar =
        "\r-- Got error of 1.234568 at iteration (250/1000) [======                     ] 25.00% "
        "completed ";
    EXPECT_EQ(printed([&] { print_progress<double>(reached); }).out, kBar);
    EXPECT_EQ(printed([&] { print_progress<float>(reached); }).out, kBar);
}

TEST(PrintProgress, ComputesTheShareInItsPrecision) {
    // Rounded to a float, the share is a whole.
    const IterationReport reached{.iteration = 999'999'999, .max_iter = 1'000'000'000};
    EXPECT_THAT(printed([&] { print_progress<double>(reached); }).out,
                HasSubstr("[========================== ]"));
    EXPECT_THAT(printed([&] { print_progress<float>(reached); }).out,
                HasSubstr("[===========================]"));
}

TEST(PrintProgress, HasRoomForAnyCost) {
    const std::string largest =
        printed([] { print_progress<double>({.max_iter = 1, .cost = -1.7e308}); }).out;
    EXPECT_THAT(largest, HasSubstr("Got error of -1"));
    EXPECT_THAT(largest, HasSubstr(".000000 at iteration (-1/1) ["));
    EXPECT_GT(largest.size(), 300U);
}

TEST(PrintEndOfIterations, SaysSoOnlyIfTheFitWasEndedEarly) {
    EXPECT_EQ(printed([] { print_end_of_iterations({.iteration = 1000, .max_iter = 1000}); }).out,
              "\n");
    EXPECT_EQ(printed([] { print_end_of_iterations({.iteration = 7, .max_iter = 1000}); }).out,
              "\n-- Ended early, at iteration 7 of 1000\n");
}

TEST(PrintFittingTime, GivesSeconds) {
    EXPECT_EQ(printed([] { print_fitting_time(2'500'000); }).out,
              "-- Performed fitting in 2.50s\n");
}

TEST(FitConsole, SaysWhatComponentsKeep) {
    EXPECT_EQ(printed([] { print_components(50, 173, 0.98765); }).out,
              "-- 50 principal components stand for 173 columns, with 98.8 % of the variance\n");
}

TEST(FitConsole, PrintsAndLogsNothingInSilence) {
    const test::RecordingSink sink;
    const Printed shown = printed([] {
        const ConsoleSilence silence;
        print_launch({.perplexity = 100.0}, 10);
        const FitNotes notes = console_notes(5.0);
        for (const FitNote note : {FitNote::SimilaritiesBegin,
                                   FitNote::ExactMethod,
                                   FitNote::DistancesBegin,
                                   FitNote::DistancesDone,
                                   FitNote::Symmetrizing,
                                   FitNote::PerplexityAboveNeighbours,
                                   FitNote::NeighbourIndexBuilt}) {
            notes(note);
        }
        print_progress<double>({.iteration = 1, .max_iter = 2});
        print_end_of_iterations({.iteration = 1, .max_iter = 2});
        print_fitting_time(1000);
        print_components(2, 3, 0.5);
    });
    EXPECT_EQ(shown.out, "");
    EXPECT_EQ(shown.err, "");
    EXPECT_TRUE(sink.lines.empty());
}

TEST(PrintSeeds, TellsCostsAndAgreement) {
    SeedReport seeds;
    seeds.runs = {{11, 40, 1.5, true}, {12, 40, 1.25, true}, {13, 7, 1.0, false}};
    seeds.kept = 1;
    seeds.agreement = MapAgreement{0.25, 10, 0.5};
    EXPECT_EQ(printed([&] { print_seeds(seeds, 5); }).out,
              "-- Seed 11: cost without exaggeration 1.5000\n"
              "-- Seed 12: cost without exaggeration 1.2500, kept\n"
              "-- Seed 13: cost without exaggeration 1.0000, ended at iteration 7\n"
              "-- Ended early: of 5 seeds 2 are complete\n"
              "-- Agreement of the maps: Procrustes disparity 0.2500, 50.0 % of the 10 nearest "
              "neighbours shared\n");
    seeds.runs.resize(2);
    seeds.agreement.reset();
    EXPECT_EQ(printed([&] { print_seeds(seeds, 2); }).out,
              "-- Seed 11: cost without exaggeration 1.5000\n"
              "-- Seed 12: cost without exaggeration 1.2500, kept\n");
}

}  // namespace
}  // namespace ovik
