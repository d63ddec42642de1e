#include "tools/choice_results.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/format.h"

#include "tests/support/temporary_directory.h"
#include "tools/result_paths.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

ComparisonEntry entry(double perplexity, double better, double seeds, double kept) {
    ComparisonEntry one;
    one.title = "yeast";
    one.rows = 1000;
    one.columns = 36;
    one.options.perplexity = perplexity;
    one.run.perplexity = perplexity;
    one.run.final_cost = 1.5;
    one.run.quality = {{10, 0.75, 0.25}, {30, 0.875, kept}};
    one.run.trials.emplace();
    one.run.trials->seeds = 3;
    one.run.trials->shared_by_seeds = seeds;
    one.run.noise.emplace();
    one.run.noise->matrices = 2;
    one.run.noise->kept = {better, 0.125, 0.0, 0.5};
    one.run.noise->misfit = {0.375, 0.0, 0.0, 0.5};
    return one;
}

std::vector<ComparisonEntry> entries() {
    return {entry(5.0, 0.25, 0.25, 0.5), entry(12.5, 0.5, 0.5, 0.5)};
}

TEST(ChoiceAmong, IsMadeOfMapsThatWereJudgedAlike) {
    const auto choice = choice_among(entries());
    ASSERT_TRUE(choice.has_value());
    EXPECT_EQ(choice->recommended, 1U);
}

TEST(ChoiceAmong, IsNotMadeOfOthers) {
    const std::vector<void (*)(ComparisonEntry&)> changes = {
        [](ComparisonEntry& one) { one.run.trials.reset(); },
        [](ComparisonEntry& one) { one.run.trials->seeds = 4; },
        [](ComparisonEntry& one) { one.run.noise.reset(); },
        [](ComparisonEntry& one) { one.run.perplexity = 5.0; },
        [](ComparisonEntry& one) { one.options.max_iter = 3; },
        [](ComparisonEntry& one) { one.data = "another"; },
        [](ComparisonEntry& one) { one.rows = 7; },
    };
    for (const auto& change : changes) {
        std::vector<ComparisonEntry> changed = entries();
        change(changed[1]);
        EXPECT_FALSE(choice_among(changed).has_value());
    }
    EXPECT_FALSE(choice_among({entries()[0]}).has_value());
    EXPECT_FALSE(choice_among({}).has_value());
}

TEST(WhyNoChoice, NamesTheReportAndWhatDiffers) {
    const std::vector<std::pair<void (*)(ComparisonEntry&), std::string>> changes = {
        {[](ComparisonEntry& one) { one.run.trials.reset(); },
         "b.json: an ordinary run, without --choose-perplexity"},
        {[](ComparisonEntry& one) { one.run.trials->seeds = 4; },
         "b.json: --seeds is 4 instead of 3, as in a.json"},
        {[](ComparisonEntry& one) { one.run.trials->columns = 1; },
         "b.json: --stability is 1 instead of 0, as in a.json"},
        {[](ComparisonEntry& one) { one.run.noise.reset(); },
         "b.json: --against-noise is 0 instead of 2, as in a.json"},
        {[](ComparisonEntry& one) { one.run.perplexity = 5.0; },
         "b.json: perplexity 5 is there twice, in a.json too"},
        {[](ComparisonEntry& one) {
             one.options.max_iter = 3;
             one.options.seed = 7;
         },
         "b.json: --max-iter is 3 instead of 1000; --seed is 7 instead of 11, as in a.json"},
        {[](ComparisonEntry& one) { one.data = "another"; },
         "b.json: other values or names of rows, as in a.json"},
        {[](ComparisonEntry& one) { one.rows = 7; },
         "b.json: number of rows is 7 instead of 1000, as in a.json"},
    };
    std::vector<ComparisonEntry> all = entries();
    all[0].report = "a.json";
    all[1].report = "b.json";
    EXPECT_EQ(why_no_choice(all), "");
    for (const auto& [change, why] : changes) {
        std::vector<ComparisonEntry> changed = all;
        change(changed[1]);
        EXPECT_FALSE(choice_among(changed).has_value());
        EXPECT_EQ(why_no_choice(changed), why);
    }
    // The ordinary one may come first.
    std::vector<ComparisonEntry> changed = all;
    changed[0].run.trials.reset();
    EXPECT_FALSE(choice_among(changed).has_value());
    EXPECT_EQ(why_no_choice(changed), "a.json: an ordinary run, without --choose-perplexity");
    changed[1].run.trials.reset();
    EXPECT_EQ(why_no_choice(changed), "");
    EXPECT_EQ(why_no_choice({all[1]}), "b.json: one perplexity, and so nothing to choose from");
    EXPECT_EQ(why_no_choice({}), "");
}

TEST(ChoiceTable, HasALinePerPerplexity) {
    const std::string of_noise = shortest_text(largest_share_of_noise(1000, 2));
    const std::vector<ComparisonEntry> all = entries();
    EXPECT_EQ(choice_table(all, *choice_among(all)),
              "perplexity\trecommended\tfinal_cost\ttrustworthiness_10\tkept_10\t"
              "trustworthiness_30\tkept_30\tbetter_than_noise\tof_noise\ttold_from_noise\t"
              "better_by_misfit\ttold_by_misfit\tshared_by_seeds\tshared_by_columns\t"
              "spread_by_seeds\tspread_by_columns\tseeds\tcolumns\tnoise\n"
              "5\tno\t1.5\t0.75\t0.25\t0.875\t0.5\t0.25\t" +
                  of_noise + "\t0.125\t0.375\t0\t0.25\t\t\t\t3\t0\t2\n" +
                  "12.5\tyes\t1.5\t0.75\t0.25\t0.875\t0.5\t0.5\t" + of_noise +
                  "\t0.125\t0.375\t0\t0.5\t\t\t\t3\t0\t2\n");
}

TEST(ChoiceCurves, AreThoseThatWereMeasured) {
    std::vector<ComparisonEntry> all = entries();
    const ChoiceCurves curves = choice_curves(all, *choice_among(all));
    EXPECT_THAT(curves.perplexities, ElementsAre(5.0, 12.5));
    ASSERT_EQ(curves.curves.size(), 3U);
    EXPECT_THAT(curves.curves[1].shares, ElementsAre(0.25, 0.5));
    EXPECT_EQ(curves.of_noise, largest_share_of_noise(1000, 2));
    EXPECT_EQ(curves.recommended, 12.5);
    all[0].run.trials->shared_by_columns = 0.75;
    EXPECT_EQ(choice_curves(all, {}).curves[1].shares[0], 0.5);
    EXPECT_FALSE(choice_curves(all, {}).recommended.has_value());
}

TEST(WriteChoice, WritesTableAndFigure) {
    const test::TemporaryDirectory directory;
    Options options;
    options.out_dir = directory.prefix();
    options.name = "yeast";
    options.suffix = "_a";
    const std::vector<ComparisonEntry> all = entries();
    testing::internal::CaptureStdout();
    const auto files = write_choice(options, all, *choice_among(all));
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string base = choice_base(options);
    EXPECT_EQ(base, directory.file("yeast_tsne_choice_a"));
    EXPECT_THAT(out, HasSubstr("Choice of perplexity: " + base + ".tsv"));
    EXPECT_EQ(test::read_file(base + ".tsv"), choice_table(all, *choice_among(all)));
    EXPECT_EQ(files.size(), 4U);
    options.plots = false;
    testing::internal::CaptureStdout();
    EXPECT_EQ(write_choice(options, all, *choice_among(all)).size(), 1U);
    testing::internal::GetCapturedStdout();
}

}  // namespace
}  // namespace ovik::tool
