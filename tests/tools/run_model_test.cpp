#include "tools/run_model.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/fit.h"
#include "stats/row_placement.h"

#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

constexpr std::size_t kRows = 40;
constexpr std::size_t kColumns = 3;

TEST(ModelOfRun, HoldsWhatTheFitCameTo) {
    const std::vector<double> values = test::random_values(kRows * kColumns, 451);
    const test::TemporaryDirectory directory;
    Options options;
    options.fit.max_iter = 20;
    options.fit.stop_lying_iter = 10;
    options.fit.mom_switch_iter = 15;
    options.fit.learning_rate = 100.0;
    TSNE<double> tsne(directory.prefix(), "m", "", "");
    tsne.N = kRows;
    tsne.D = kColumns;
    tsne.max_iter = 20;
    tsne.theta = 0.5;
    options.load.missing = MissingPolicy::Drop;
    tsne.options = options.fit;
    tsne.draw_plots = false;
    tsne.transformations = "scale";
    tsne.X = new double[values.size()];
    std::copy(values.begin(), values.end(), tsne.X);
    for (std::size_t n = 0; n < kRows; ++n) {
        tsne.row_names.push_back("row" + std::to_string(n));
    }
    testing::internal::CaptureStdout();
    tsne.actuate(2, 5.0, {}, 10, 15);
    testing::internal::GetCapturedStdout();
    const KnownColumns columns{{"a", "b", "c"}, {1.0, 2.0, 3.0}, {}, {4.0, 5.0, 6.0}};
    const MapModel model = model_of_run(tsne, options, columns);
    tsne.finish();

    std::vector<double> X = values;
    FitOptions fit_options = options.fit;
    fit_options.perplexity = 5.0;
    const Fit expected = fit({X.data(), kRows, kColumns}, fit_options);
    EXPECT_EQ(model.rows, kRows);
    EXPECT_EQ(model.columns, kColumns);
    EXPECT_EQ(model.out_dims, 2U);
    EXPECT_EQ(model.perplexity, 5.0);
    EXPECT_EQ(model.options.front(), (std::pair<std::string, std::string>("perplexity", "5")));
    EXPECT_EQ(model.row_names.back(), "row39");
    EXPECT_EQ(model.column_names, columns.names);
    EXPECT_EQ(model.column_means, columns.means);
    EXPECT_TRUE(model.subtracted.empty());
    EXPECT_EQ(model.divisors, columns.divisors);
    EXPECT_EQ(model.missing, "drop");
    EXPECT_EQ(model.transformations, "scale");
    EXPECT_EQ(model.centres, expected.report.scale.means);
    EXPECT_EQ(model.factor, expected.report.scale.factor);
    EXPECT_EQ(model.input, X);
    EXPECT_EQ(model.embedding, expected.embedding);
    EXPECT_EQ(model.largest_nearest_distance,
              largest_nearest_distance({X.data(), kRows, kColumns}));
}

TEST(CheckPlacingOptions, RefusesMapsOnWhichRowsCannotBePlaced) {
    FitOptions fit;
    EXPECT_EQ(test::refusal_of([&] { check_placing_options(fit); }), "");
    fit.metric = MetricKind::Precomputed;
    EXPECT_EQ(test::refusal_of([&] { check_placing_options(fit); }),
              "--model: new rows cannot be placed on a map that is made with --metric precomputed\n"
              "Leave --model away, or --metric.");
    fit = {};
    fit.pca = 7;
    EXPECT_NE(test::refusal_of([&] { check_placing_options(fit); }), "");
    fit = {};
    fit.start = StartKind::Pca;
    fit.metric = MetricKind::Spearman;
    EXPECT_EQ(test::refusal_of([&] { check_placing_options(fit); }), "");
}

TEST(CheckPlacingOptions, RefusesModelsThatAskForMore) {
    MapModel model;
    model.options = {{"metric", "euclidean"}, {"theta", "0.7"}};
    EXPECT_EQ(test::refusal_of([&] { check_placing_options("m", model); }), "");
    model.options.emplace_back("pca", "7");
    EXPECT_EQ(test::refusal_of([&] { check_placing_options("m", model); }),
              "m: this program cannot place rows on a map with pca = 7\n"
              "Use the program that wrote the model.");
}

TEST(MetricOf, IsThatOfTheModel) {
    MapModel model;
    EXPECT_EQ(metric_of("m", model), MetricKind::Euclidean);
    model.options = {{"theta", "0.7"}, {"metric", "cosine"}};
    EXPECT_EQ(metric_of("m", model), MetricKind::Cosine);
    model.options[1].second = "taxicab";
    EXPECT_EQ(test::refusal_of([&] { metric_of("m", model); }),
              "m: this program cannot place rows on a map with metric = taxicab\n"
              "Use the program that wrote the model.");
}

}  // namespace
}  // namespace ovik::tool
