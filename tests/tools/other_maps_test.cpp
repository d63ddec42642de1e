#include "tools/other_maps.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/map_stability.h"
#include "stats/varied_maps.h"
#include "util/console.h"

#include "tests/support/random_points.h"

namespace ovik::tool {
namespace {

TEST(CompareWithOtherMaps, TellsHowFarTheMapOfTheKeptSeedStays) {
    constexpr int kRows = 60;
    constexpr int kColumns = 5;
    const std::vector<double> X = test::random_values(std::size_t{kRows} * kColumns, 431);
    const MatrixView<const double> view{X.data(), kRows, kColumns};
    TSNE<double> tsne("", "", "", "");
    tsne.X = new double[X.size()];
    std::copy(X.begin(), X.end(), tsne.X);
    tsne.N = kRows;
    tsne.D = kColumns;
    tsne.max_iter = 20;
    {
        const ConsoleSilence silence;
        tsne.embed(2, 3.0, 250, 250);
    }
    Options options;
    options.fit.max_iter = 20;
    options.stability = 2;
    FitReport report;
    report.seeds = SeedReport{{{11, 5, 1.5, true}, {14, 5, 1.4, true}}, 1, {}};
    testing::internal::CaptureStdout();
    const auto stability = compare_with_other_maps(tsne, options, view, report, nullptr);
    const std::string out = testing::internal::GetCapturedStdout();
    FitOptions fit = options.fit;
    fit.perplexity = 3.0;
    fit.seed = 14;
    const VariedMaps others = varied_maps(view, fit, 2).value();
    const RecordedStability expected =
        map_stability({tsne.Y, kRows, 2}, others.of_seeds, others.of_columns);
    ASSERT_EQ(stability->columns.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(stability->columns[i].values, expected.columns[i].values);
    }
    EXPECT_THAT(out, testing::HasSubstr("-- Stability, 2 other seeds: "));
    EXPECT_THAT(out, testing::HasSubstr("-- Stability, 2 draws of the columns: "));
    EXPECT_THAT(out,
                testing::HasSubstr("-- Stability of clusters: not compared without --clusters\n"));
    tsne.finish();
}

}  // namespace
}  // namespace ovik::tool
