#include "stats/run_caption.h"

#include <gtest/gtest.h>

namespace ovik {

namespace {

using Parameter = std::pair<std::string, std::string>;

TEST(RunCaption, ShowsWhatTheMapWasMadeByAndWhatItCameTo) {
    FitOptions options;
    options.perplexity = 12.5;
    options.theta = 0.0;
    FitReport report;
    report.reached.iteration = 260;
    report.reached.cost = 1.25;
    const auto parameters = caption_parameters(options, 90, 6, report);
    ASSERT_GT(parameters.size(), 5U);
    EXPECT_EQ(parameters[0], Parameter("Method", "exact t-SNE"));
    EXPECT_EQ(parameters[1], Parameter("Input", "90 rows, 6 columns"));
    EXPECT_EQ(parameters[2], Parameter("Perplexity", "12.5"));
    EXPECT_EQ(parameters[parameters.size() - 2], Parameter("Last iteration", "260"));
    EXPECT_EQ(parameters.back(), Parameter("Final cost", "1.25"));
}

TEST(RunCaption, ShowsWhatComponentsKeep) {
    FitReport report;
    report.variance_kept = 0.93456;
    const auto parameters = caption_parameters({}, 90, 6, report);
    EXPECT_EQ(parameters[parameters.size() - 3], Parameter("Variance kept", "93.5 %"));
}

TEST(RunCaption, ShowsHowManyNeighboursAnApproximateSearchFound) {
    FitReport report;
    report.recall = NeighbourRecall{0.98712, 1000};
    FitOptions options;
    options.neighbour_search = NeighbourSearchKind::Approximate;
    const auto parameters = caption_parameters(options, 90, 6, report);
    EXPECT_EQ(parameters[parameters.size() - 3],
              Parameter("Neighbours found", "98.7 % of the nearest, of 1000 rows"));
    EXPECT_EQ(parameters[parameters.size() - 4], Parameter("Neighbour search", "approximate"));
}

TEST(RunCaption, SaysWhereAnApproximateSearchBecameExact) {
    FitReport report;
    report.search_became_exact = true;
    const auto parameters = caption_parameters({}, 90, 6, report);
    EXPECT_EQ(parameters[parameters.size() - 3],
              Parameter("Neighbours found", "all: the search was exact"));
}

TEST(RunCaption, TellsOfSeveralSeeds) {
    FitReport report;
    report.seeds = SeedReport{{{11, 10, 1.5, true}, {12, 10, 1.25, true}}, 1, {}};
    const auto without_agreement = caption_parameters({}, 90, 6, report);
    EXPECT_EQ(without_agreement[without_agreement.size() - 2],
              Parameter("Seeds", "11 to 12; 12 has the lowest cost"));
    EXPECT_EQ(without_agreement.back(), Parameter("Cost by seed", "11: 1.5000, 12: 1.2500"));
    report.seeds->agreement = MapAgreement{0.5, 10, 0.25};
    const auto parameters = caption_parameters({}, 90, 6, report);
    EXPECT_EQ(parameters[parameters.size() - 3].first, "Seeds");
    EXPECT_EQ(parameters.back().first, "Agreement of their maps");
}

/// The value of a parameter; "missing" if it is not shown.
std::string shown(const FitOptions& options, const std::string& title) {
    for (const auto& [name, value] : caption_parameters(options, 90, 6, {})) {
        if (name == title) {
            return value;
        }
    }
    return "missing";
}

TEST(RunCaption, ShowsTheNumbersOfTheClassicalRunAlone) {
    std::vector<std::string> titles;
    for (const Parameter& parameter : caption_parameters({}, 90, 6, {})) {
        titles.push_back(parameter.first);
    }
    EXPECT_EQ(titles,
              (std::vector<std::string>{"Method",
                                        "Input",
                                        "Perplexity",
                                        "Theta",
                                        "Output dimensions",
                                        "End of early exaggeration",
                                        "Momentum switch",
                                        "Random seed",
                                        "Learning rate",
                                        "Early exaggeration",
                                        "Spread of the start",
                                        "Momentum",
                                        "Final momentum",
                                        "Last iteration",
                                        "Final cost"}));
}

TEST(RunCaption, ShowsWhatDiffersFromTheClassicalRunAndLeavesOutWhatHasNoEffect) {
    const FitOptions options{.metric = MetricKind::Cosine,
                             .multiscale = {10.0, 50.0},
                             .start = StartKind::Pca,
                             .schedule = ScheduleKind::Annealed,
                             .automatic_rate = true,
                             .stop_when = 0.001};
    EXPECT_EQ(shown(options, "Metric"), "cosine");
    EXPECT_EQ(shown(options, "Perplexities in one"), "10,50");
    EXPECT_EQ(shown(options, "Perplexity"), "missing");
    EXPECT_EQ(shown(options, "Start"), "pca");
    EXPECT_EQ(shown(options, "Schedule"), "annealed");
    EXPECT_EQ(shown(options, "Full exaggeration"), "125");
    EXPECT_EQ(shown(options, "End of early exaggeration"), "missing");
    EXPECT_EQ(shown(options, "Learning rate"), "auto");
    EXPECT_EQ(shown(options, "Least gain"), "0.1 % of the cost in 50 iterations");
}

TEST(RunCaption, ARunThatWasEndedHasTheCaptionOfAShorterOne) {
    FitOptions shorter;
    shorter.max_iter = 10;
    EXPECT_EQ(caption_parameters({}, 5, 2, {}), caption_parameters(shorter, 5, 2, {}));
}

}  // namespace

}  // namespace ovik
