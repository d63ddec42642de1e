#include "stats/preset.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "stats/fit_checks.h"
#include "stats/option_texts.h"

namespace ovik {
namespace {

/// Whether two fits are asked for the same.
void expect_equal(const FitOptions& one, const FitOptions& other) {
    std::set<std::string> texts[2];
    for (const auto& [options, index] : {std::pair(&one, 0), std::pair(&other, 1)}) {
        visit_fit_options(*options, [&, place = index](const auto& option) {
            texts[place].insert(std::string(option.words.name) + " " + value_text(option));
        });
    }
    EXPECT_EQ(texts[0], texts[1]);
}

const auto kNothing = [](std::string_view) { return false; };

TEST(PresetOptions, OfTheClassicalRunAreTheDefaults) {
    for (const std::size_t rows : {3U, 6000U}) {
        expect_equal(preset_options(PresetKind::Classic, rows), FitOptions());
        EXPECT_EQ(preset_changes(PresetKind::Classic, rows), "");
    }
}

TEST(PresetOptions, OfTheRefinedRunFitEachOther) {
    for (const std::size_t rows : {100U, 1000U, 10'000U, 1'000'000U}) {
        const FitOptions options = preset_options(PresetKind::Refined, rows);
        expect_equal(options, refined_options(rows));
        EXPECT_NO_THROW(check_fit_options(options, rows, 50)) << rows;
        EXPECT_EQ(options.metric, MetricKind::Euclidean);
        EXPECT_EQ(options.schedule, ScheduleKind::Annealed);
        EXPECT_NE(preset_changes(PresetKind::Refined, rows).find("schedule annealed"),
                  std::string::npos);
    }
}

TEST(PresetOptions, ChooseTheSameForAllSizes) {
    const FitOptions few = refined_options(100);
    const FitOptions many = refined_options(1'000'000);
    EXPECT_EQ(few.start, many.start);
    EXPECT_EQ(few.schedule, many.schedule);
    EXPECT_EQ(few.affinity, many.affinity);
    EXPECT_EQ(few.automatic_rate, many.automatic_rate);
}

TEST(WithPreset, IsThePresetWhereNothingIsGiven) {
    const FitOptions others{.theta = 0.0, .learning_rate = 1.0, .start = StartKind::Given};
    expect_equal(with_preset(PresetKind::Refined, 500, others, kNothing), refined_options(500));
    expect_equal(with_preset(PresetKind::Classic, 500, others, kNothing), FitOptions());
}

TEST(WithPreset, HasWhatIsGivenInItsPlace) {
    const FitOptions given{.theta = 0.25,
                           .learning_rate = 300.0,
                           .metric = MetricKind::Pearson,
                           .multiscale = {10.0, 50.0},
                           .schedule = ScheduleKind::Classic};
    const std::set<std::string, std::less<>> names{
        "theta", "learning_rate", "metric", "multiscale", "schedule"};
    FitOptions expected = refined_options(500);
    expected.theta = 0.25;
    expected.learning_rate = 300.0;
    expected.automatic_rate = false;
    expected.metric = MetricKind::Pearson;
    expected.multiscale = {10.0, 50.0};
    expected.schedule = ScheduleKind::Classic;
    expect_equal(with_preset(PresetKind::Refined,
                             500,
                             given,
                             [&names](std::string_view name) { return names.contains(name); }),
                 expected);
}

TEST(WithPreset, StartsDistancesAtRandomUnlessAStartIsGiven) {
    const FitOptions given{.metric = MetricKind::Precomputed, .start = StartKind::Pca};
    EXPECT_EQ(
        with_preset(
            PresetKind::Refined, 500, given, [](std::string_view name) { return name == "metric"; })
            .start,
        StartKind::Random);
    EXPECT_EQ(with_preset(PresetKind::Refined,
                          500,
                          given,
                          [](std::string_view name) { return name == "metric" || name == "start"; })
                  .start,
              StartKind::Pca);
}

}  // namespace
}  // namespace ovik
