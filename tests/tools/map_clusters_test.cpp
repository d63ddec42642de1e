#include "tools/map_clusters.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/console.h"

#include "tests/support/random_points.h"

namespace ovik::tool {
namespace {

constexpr int kRows = 60;
constexpr int kColumns = 3;

/// Rows in two groups, the second twice as large, embedded and divided.
RowClusters divided(double theta, std::string& out) {
    std::vector<double> X = test::random_values(kRows * kColumns, 12);
    for (int n = 0; n < kRows / 3; ++n) {
        X[static_cast<std::size_t>(n * kColumns)] += 50.0;
    }
    TSNE<double> tsne("", "", "", "");
    tsne.X = new double[X.size()];
    std::copy(X.begin(), X.end(), tsne.X);
    tsne.N = kRows;
    tsne.D = kColumns;
    tsne.theta = theta;
    tsne.max_iter = 1;
    tsne.embed(2, 12.0, 250, 250);
    FitOptions options;
    options.theta = theta;
    options.perplexity = 12.0;
    FitReport report;
    report.neighbours = neighbours_of_rows({tsne.X, kRows, kColumns}, options);
    if (theta == 0.0) {
        report.neighbours = {};
    }
    testing::internal::CaptureStdout();
    const RowClusters clusters = find_map_clusters(tsne, options, report, 0.1);
    out = testing::internal::GetCapturedStdout();
    tsne.finish();
    return clusters;
}

TEST(MapClusters, AreFoundWithAndWithoutTheNeighboursOfTheFit) {
    for (const double theta : {0.0, 0.5}) {
        std::string out;
        const RowClusters clusters = divided(theta, out);
        EXPECT_EQ(clusters.sizes, (std::vector<std::size_t>{40, 20}));
        EXPECT_EQ(out,
                  "-- Clusters: " + clusters_text(clusters, 0.1) +
                      "; the largest has 40 rows, the smallest 20\n");
        const LabelColumn labels = cluster_labels(clusters);
        EXPECT_EQ(labels.title, "Cluster");
        EXPECT_FALSE(labels.isNumeric());
        EXPECT_EQ(labels.texts.front(), "2");
        EXPECT_EQ(labels.texts.back(), "1");
    }
}

TEST(MapClusters, AreDescribed) {
    EXPECT_EQ(clusters_text({{0, 1}, {1, 1}, 0.25}, 1.5), "2 at resolution 1.5, modularity 0.2500");
}

}  // namespace
}  // namespace ovik::tool
