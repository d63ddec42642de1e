#include "tools/trust_options.h"

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

}  // namespace
}  // namespace ovik::tool
