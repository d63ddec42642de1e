#include "tools/trust_options.h"

#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik::tool {
namespace {

/// Rows each of which has a value in one column.
std::vector<double> rows_of_one_column(std::size_t columns) {
    std::vector<double> X(columns * columns, 0.0);
    for (std::size_t n = 0; n < columns; ++n) {
        X[n * columns + n] = 1.0;
    }
    return X;
}

/// @param X  as many columns as rows
bool is_refused(const Options& options, const std::vector<double>& X) {
    const auto side = static_cast<std::size_t>(std::sqrt(static_cast<double>(X.size())));
    try {
        check_drawn_rows(options, {X.data(), side, side});
    } catch (const InputError&) {
        return true;
    }
    return false;
}

TEST(CheckJudgedRows, RefusesFewRowsWhereSingleOnesAreAskedFor) {
    Options options;
    EXPECT_NO_THROW(check_judged_rows(options, 3, 2));
    options.reliability = true;
    EXPECT_THROW(check_judged_rows(options, 29, 2), InputError);
    EXPECT_NO_THROW(check_judged_rows(options, 30, 2));
}

TEST(CheckJudgedRows, RefusesToDrawFromFewColumnsOrComponents) {
    Options options;
    options.stability = 5;
    EXPECT_NO_THROW(check_judged_rows(options, 30, 5));
    EXPECT_THROW(check_judged_rows(options, 29, 5), InputError);
    EXPECT_THROW(check_judged_rows(options, 30, 4), InputError);
    options.sparse_components = 50;
    EXPECT_THROW(check_judged_rows(options, 30, 50), InputError);
}

TEST(CheckChosenPerplexities, RefusesThoseThatCannotBeJudged) {
    Options options;
    options.chooses_perplexity = true;
    options.perplexities = {5.0, 9.5};
    EXPECT_NO_THROW(check_chosen_perplexities(options, 30));
    EXPECT_THROW(check_chosen_perplexities(options, 29), InputError);
    EXPECT_THROW(check_judged_rows(options, 29, 2), InputError);
    options.fit.start = StartKind::Given;
    EXPECT_THROW(check_chosen_perplexities(options, 30), InputError);
    options.fit.start = StartKind::Random;
    options.fit.affinity = AffinityKind::Uniform;
    EXPECT_THROW(check_chosen_perplexities(options, 30), InputError);
    options.chooses_perplexity = false;
    EXPECT_NO_THROW(check_chosen_perplexities(options, 3));
}

TEST(SettleDrawnColumns, LeavesThemOutWhereThereAreFew) {
    Options options;
    options.stability = 5;
    settle_drawn_columns(options, 4);
    EXPECT_EQ(options.stability, 5);
    options.chooses_perplexity = true;
    settle_drawn_columns(options, 5);
    EXPECT_EQ(options.stability, 5);
    testing::internal::CaptureStderr();
    settle_drawn_columns(options, 4);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "ovik-tsne: note: no columns are drawn, of which there are 4 and should be at least "
              "5\n");
    EXPECT_EQ(options.stability, 0);
}

TEST(CheckNoiseOptions, RefusesWhatCannotBeShuffledOrEmbeddedAlike) {
    const std::vector<std::function<void(Options&)>> kRefused = {
        [](Options& options) { options.fit.metric = MetricKind::Precomputed; },
        [](Options& options) { options.neighbours_file = "graph.mtx"; },
        [](Options& options) { options.start_file = "start.tsv"; },
        [](Options& options) { options.seeds = 2; },
    };
    for (const std::function<void(Options&)>& change : kRefused) {
        Options options;
        change(options);
        EXPECT_NO_THROW(check_noise_options(options));
        options.against_noise = 3;
        EXPECT_THROW(check_noise_options(options), InputError);
    }
    Options options;
    options.against_noise = 3;
    EXPECT_NO_THROW(check_noise_options(options));
}

TEST(CheckShuffledRows, RefusesRowsOfNoiseThatCannotBeCompared) {
    // Shuffled, some rows have the same value in both columns.
    std::vector<double> X(60 * 2);
    for (std::size_t n = 0; n < 60; ++n) {
        X[2 * n + n % 2] = 1.0;
    }
    Options options;
    options.fit.metric = MetricKind::Pearson;
    EXPECT_NO_THROW(check_shuffled_rows(options, {X.data(), 60, 2}));
    options.against_noise = 2;
    EXPECT_THROW(check_shuffled_rows(options, {X.data(), 60, 2}), InputError);
    options.chooses_perplexity = true;
    options.perplexities = {5.0};
    try {
        check_trust(options, {X.data(), 60, 2});
        ADD_FAILURE() << "rows of noise were taken";
    } catch (const InputError& error) {
        EXPECT_THAT(error.what(),
                    testing::StartsWith("--choose-perplexity also embeds matrices of shuffled "
                                        "values, as noise has them, and --metric pearson cannot "));
    }
    options.fit.metric = MetricKind::Euclidean;
    EXPECT_NO_THROW(check_shuffled_rows(options, {X.data(), 60, 2}));
    EXPECT_NO_THROW(check_trust(options, {X.data(), 60, 2}));
}

TEST(CheckDrawnRows, RefusesRowsThatFewColumnsTellApart) {
    constexpr std::size_t kColumns = 30;
    const std::vector<double> X = rows_of_one_column(kColumns);
    Options options;
    options.fit.metric = MetricKind::Cosine;
    EXPECT_NO_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}));
    options.stability = 1;
    EXPECT_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}), InputError);
    options.chooses_perplexity = true;
    EXPECT_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}), InputError);
    options.fit.metric = MetricKind::Euclidean;
    EXPECT_NO_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}));
}

TEST(CheckDrawnRows, LooksAtTheDrawsOfEverySeedThatIsDrawnBy) {
    // A draw of 5 columns has all of them once in 26 times: 100 draws miss some by one seed in 50.
    const std::vector<double> X = rows_of_one_column(5);
    Options options;
    options.fit.metric = MetricKind::Cosine;
    options.stability = 1;
    while (is_refused(options, X)) {
        ++options.fit.seed;
    }
    while (!is_refused(options, X)) {
        ++options.seeds;
    }
    // A choice draws columns by its own seed alone.
    options.chooses_perplexity = true;
    EXPECT_FALSE(is_refused(options, X));
}

}  // namespace
}  // namespace ovik::tool
