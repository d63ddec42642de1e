#include "tools/comparison_numbers.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

ComparisonEntry entry(double perplexity, double cost, double kept) {
    ComparisonEntry entry;
    entry.rows = 100;
    entry.columns = 4;
    entry.data = "same";
    entry.run.perplexity = perplexity;
    entry.run.iteration = 999;
    entry.run.final_cost = cost;
    entry.run.seconds = {0.25, cost, 9.0};
    entry.run.quality = {{10, 0.9, kept}};
    return entry;
}

/// The number of a name; without values if there is none.
ComparedNumber find(const std::vector<ComparedNumber>& numbers, const std::string& name) {
    const auto found =
        std::find_if(numbers.begin(), numbers.end(), [&](const ComparedNumber& number) {
            return number.name == name;
        });
    return found == numbers.end() ? ComparedNumber() : *found;
}

ComparedNumber number(const std::vector<ComparisonEntry>& entries, const std::string& name) {
    return find(numbers_of(entries, {}), name);
}

TEST(NumbersOf, TellEachRunAndMarkTheBest) {
    const std::vector<ComparisonEntry> entries = {
        entry(5.0, 1.5, 0.25), entry(30.0, 1.25, 0.5), entry(12.75, 2.0, 0.5)};
    EXPECT_THAT(number(entries, "Perplexity").values, ElementsAre("5", "30", "12.75"));
    EXPECT_THAT(number(entries, "Perplexity").is_best, ElementsAre(false, false, false));
    EXPECT_THAT(number(entries, "Theta").values, ElementsAre("0.5", "0.5", "0.5"));
    EXPECT_THAT(number(entries, "Last iteration").values, ElementsAre("999", "999", "999"));
    EXPECT_THAT(number(entries, "Seconds").values, ElementsAre("1.75", "1.50", "2.25"));
    EXPECT_THAT(number(entries, "Seconds").is_best, ElementsAre(false, true, false));
    const ComparedNumber kept = number(entries, "Kept of the nearest 10");
    EXPECT_THAT(kept.values, ElementsAre("25.0 %", "50.0 %", "50.0 %"));
    EXPECT_THAT(kept.is_best, ElementsAre(false, true, true));
    // Where all are equal, none is the best.
    EXPECT_THAT(number(entries, "Trustworthiness, nearest 10").values,
                ElementsAre("0.9000", "0.9000", "0.9000"));
    EXPECT_THAT(number(entries, "Trustworthiness, nearest 10").is_best,
                ElementsAre(false, false, false));
    for (const ComparedNumber& told : numbers_of(entries, {})) {
        EXPECT_EQ(told.sentence.back(), '.') << told.name;
        EXPECT_EQ(told.is_best.size(), 3U) << told.name;
    }
}

TEST(NumbersOf, CallNoCostTheBestOfDifferentAffinities) {
    const ComparedNumber other = number({entry(5.0, 1.5, 0.1), entry(30.0, 1.25, 0.1)}, "Cost");
    EXPECT_THAT(other.values, ElementsAre("1.5000", "1.2500"));
    EXPECT_THAT(other.is_best, ElementsAre(false, false));
    EXPECT_THAT(other.sentence, HasSubstr("none is called the best"));
    ComparisonEntry seeded = entry(5.0, 1.25, 0.1);
    seeded.options.seed = 12;
    const std::vector<ComparisonEntry> seeds = {entry(5.0, 1.5, 0.1), seeded};
    EXPECT_THAT(number(seeds, "Cost").is_best, ElementsAre(false, true));
    EXPECT_THAT(number(seeds, "Seed").values, ElementsAre("11", "12"));
    ComparisonEntry exact = entry(5.0, 1.25, 0.1);
    exact.options.theta = 0.0;
    EXPECT_THAT(number({entry(5.0, 1.5, 0.1), exact}, "Cost").is_best, ElementsAre(false, false));
    // Barnes-Hut and the mesh have the same neighbours.
    ComparisonEntry mesh = entry(5.0, 1.25, 0.1);
    mesh.options.method = MethodKind::Mesh;
    EXPECT_THAT(number({entry(5.0, 1.5, 0.1), mesh}, "Cost").is_best, ElementsAre(false, true));
    EXPECT_THAT(number({entry(5.0, 1.5, 0.1), mesh}, "Theta").values, ElementsAre("0.5", "none"));
}

TEST(NumbersOf, CallNoneTheBestOfDifferentData) {
    for (const char* const what : {"data", "metric", "rows"}) {
        ComparisonEntry other = entry(5.0, 1.25, 0.5);
        other.data = *what == 'd' ? "other" : "same";
        other.options.metric = *what == 'm' ? MetricKind::Pearson : MetricKind::Euclidean;
        other.rows = *what == 'r' ? 99 : 100;
        const std::vector<ComparisonEntry> entries = {entry(5.0, 1.5, 0.25), other};
        EXPECT_THAT(number(entries, "Cost").is_best, ElementsAre(false, false)) << what;
        // Fewer rows are fitted faster.
        EXPECT_THAT(number(entries, "Seconds").is_best, ElementsAre(false, false)) << what;
        EXPECT_THAT(number(entries, "Seconds").sentence, HasSubstr("none is called the best."));
        EXPECT_THAT(number(entries, "Kept of the nearest 10").is_best, ElementsAre(false, false));
        EXPECT_THAT(number(entries, "Kept of the nearest 10").sentence,
                    HasSubstr("different data, so that none is called the best."));
    }
}

TEST(NumbersOf, LeaveOutWhatNoRunHas) {
    ComparisonEntry bare = entry(std::nan(""), 1.5, 0.25);
    bare.run.quality.clear();
    bare.run.seconds = {};
    const std::vector<ComparisonEntry> entries = {bare, entry(5.0, 1.25, 0.5)};
    EXPECT_THAT(number(entries, "Perplexity").values, ElementsAre("none", "5"));
    EXPECT_THAT(number(entries, "Seconds").values, ElementsAre("", "1.50"));
    EXPECT_THAT(number(entries, "Seconds").is_best, ElementsAre(false, false));
    EXPECT_THAT(number(entries, "Kept of the nearest 10").values, ElementsAre("", "50.0 %"));
    for (const char* const name : {"Seconds", "Seed", "Choices", "Disparity"}) {
        EXPECT_TRUE(number({bare}, name).values.empty()) << name;
    }
    EXPECT_TRUE(numbers_of({}, {}).empty());
}

TEST(NumbersOf, TellWhatRunsHaveChosen) {
    ComparisonEntry pearson = entry(5.0, 1.5, 0.25);
    pearson.options.metric = MetricKind::Pearson;
    EXPECT_THAT(number({pearson, entry(5.0, 1.5, 0.25)}, "Choices").values,
                ElementsAre("metric pearson", "none"));
}

TEST(NumbersOf, TellHowFarMapsAgreeWithTheReference) {
    AlignedMaps maps;
    maps.maps.resize(3);
    maps.reference = 1;
    maps.maps[0].agreement = {0.25, 7, 0.5};
    const auto numbers = numbers_of({entry(5.0, 1, 0), entry(6.0, 1, 0), entry(7.0, 1, 0)}, maps);
    EXPECT_THAT(find(numbers, "Disparity").values, ElementsAre("0.250", "reference", ""));
    EXPECT_THAT(find(numbers, "Neighbours shared").values, ElementsAre("50.0 %", "reference", ""));
    EXPECT_THAT(find(numbers, "Neighbours shared").sentence, HasSubstr("the 7 nearest"));
}

}  // namespace
}  // namespace ovik::tool
