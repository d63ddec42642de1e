#include "tools/trust_options.h"

#include <cstddef>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik::tool {
namespace {

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
    options.fit.metric = MetricKind::Euclidean;
    EXPECT_NO_THROW(check_shuffled_rows(options, {X.data(), 60, 2}));
}

TEST(CheckDrawnRows, RefusesRowsThatFewColumnsTellApart) {
    constexpr std::size_t kColumns = 30;
    std::vector<double> X(kColumns * kColumns, 0.0);
    for (std::size_t n = 0; n < kColumns; ++n) {
        X[n * kColumns + n] = 1.0;
    }
    Options options;
    options.fit.metric = MetricKind::Cosine;
    EXPECT_NO_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}));
    options.stability = 1;
    EXPECT_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}), InputError);
    options.fit.metric = MetricKind::Euclidean;
    EXPECT_NO_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}));
}

}  // namespace
}  // namespace ovik::tool
