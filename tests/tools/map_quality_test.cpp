#include "tools/map_quality.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/neighbourhood_quality.h"
#include "util/console.h"

#include "tests/support/random_points.h"

namespace ovik::tool {
namespace {

/// A run over random rows without iterations, and its quality with what was printed.
template <typename T>
struct Measured {
    explicit Measured(int N) {
        constexpr int kColumns = 3;
        const std::vector<double> X =
            test::random_values(static_cast<std::size_t>(N * kColumns), 431);
        TSNE<T> tsne("", "", "", "");
        tsne.X = new double[X.size()];
        std::copy(X.begin(), X.end(), tsne.X);
        tsne.N = N;
        tsne.D = kColumns;
        tsne.theta = 0.5;
        tsne.max_iter = 20;
        {
            const ConsoleSilence silence;
            tsne.embed(2, 3.0, 250, 250);
        }
        final_cost = tsne.finalCost();
        const auto rows = static_cast<std::size_t>(N);
        for (const std::size_t size : {10U, 30U}) {
            if (2 * size < rows) {
                sizes.push_back(size);
            }
        }
        expected = neighbourhood_quality(tsne.X, rows, kColumns, tsne.Y, 2, sizes);
        testing::internal::CaptureStdout();
        quality = report_map_quality(tsne, 2).quality;
        out = testing::internal::GetCapturedStdout();
        tsne.finish();
    }

    double final_cost = 0.0;
    std::vector<std::size_t> sizes;
    std::vector<NeighbourhoodQuality> expected;
    std::vector<NeighbourhoodQuality> quality;
    std::string out;
};

std::string with_decimals(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

TEST(ReportMapQuality, PrintsWhatItMeasures) {
    const Measured<double> run(80);
    ASSERT_EQ(run.quality.size(), 2U);
    std::string expected =
        "-- Cost without exaggeration: " + with_decimals(run.final_cost, 4) + "\n";
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(run.quality[i].neighbours, run.sizes[i]);
        EXPECT_EQ(run.quality[i].trustworthiness, run.expected[i].trustworthiness);
        EXPECT_EQ(run.quality[i].preservation, run.expected[i].preservation);
        expected += "-- Nearest " + std::to_string(run.sizes[i]) + ": trustworthiness " +
                    with_decimals(run.quality[i].trustworthiness, 4) + ", " +
                    with_decimals(100.0 * run.quality[i].preservation, 1) + " % of them kept\n";
    }
    EXPECT_EQ(run.out, expected);
}

TEST(ReportMapQuality, TakesTheNeighboursThatTheRowsAllow) {
    const std::pair<int, std::size_t> kCases[] = {{20, 0}, {21, 1}, {60, 1}, {61, 2}};
    for (const auto& [N, sizes] : kCases) {
        const Measured<float> run(N);
        EXPECT_EQ(run.quality.size(), sizes) << N;
        EXPECT_THAT(run.out, testing::StartsWith("-- Cost without exaggeration: "));
        EXPECT_EQ(static_cast<std::size_t>(std::count(run.out.begin(), run.out.end(), '\n')),
                  sizes + 1);
    }
}

}  // namespace
}  // namespace ovik::tool
