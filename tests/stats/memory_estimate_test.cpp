#include "stats/memory_estimate.h"

#include <cmath>

#include <gtest/gtest.h>

namespace ovik {
namespace {

constexpr RunSize kExact{.rows = 20000, .columns = 50, .options = {.theta = 0.0}};
constexpr RunSize kBarnesHut{.rows = 100000, .columns = 50, .options = {.perplexity = 30.0}};

TEST(EstimateMemory, GrowsWithTheSquareOfTheRowsForTheExactMethod) {
    RunSize twice = kExact;
    twice.rows *= 2;
    EXPECT_NEAR(estimate_memory(twice).peak() / estimate_memory(kExact).peak(), 4.0, 0.1);
    // Distances and similarities.
    EXPECT_NEAR(estimate_memory(kExact).peak(), 16.0 * 20000 * 20000, 0.1e9);
}

TEST(EstimateMemory, GrowsWithRowsPerplexityAndColumnsForBarnesHut) {
    const double peak = estimate_memory(kBarnesHut).peak();
    RunSize larger = kBarnesHut;
    larger.rows *= 2;
    EXPECT_NEAR(estimate_memory(larger).peak() / peak, 2.0, 0.2);
    larger = kBarnesHut;
    larger.options.perplexity *= 2;
    EXPECT_GT(estimate_memory(larger).peak(), 1.5 * peak);
    larger = kBarnesHut;
    larger.columns *= 10;
    EXPECT_GT(estimate_memory(larger).peak(), peak + 8.0 * 450 * 100000);
}

TEST(EstimateMemory, TakesNoMoreNeighboursThanThereAre) {
    RunSize few{.rows = 1000, .columns = 5, .options = {.perplexity = 500.0}};
    const double peak = estimate_memory(few).peak();
    few.options.perplexity = 1e9;
    EXPECT_EQ(estimate_memory(few).peak(), peak);
}

TEST(EstimateMemory, CountsPlotsAndPairsOfDimensions) {
    RunSize size{.rows = 1000000, .columns = 2, .options = {.perplexity = 1.0}};
    const double with_plots = estimate_memory(size).results;
    size.has_plots = false;
    EXPECT_LT(estimate_memory(size).results, with_plots);
    size.has_plots = true;
    size.page_bytes = 1000000;
    EXPECT_EQ(estimate_memory(size).results, with_plots + 7e6);
    size.has_plots = false;
    size.page_bytes = 0;
    size.options.out_dims = 3;
    EXPECT_GT(estimate_memory(size).results, 3.0 * 160.0 * 1e6);
}

TEST(EstimateMemory, CountsWhatThreadsNeedForNeighbours) {
    RunSize size{.rows = 1000000, .columns = 50, .options = {.perplexity = 5.0}, .threads = 64};
    const double many = estimate_memory(size).peak();
    size.threads = 1;
    EXPECT_GT(many, 2.0 * estimate_memory(size).peak());
}

TEST(EstimateMemory, CountsPrincipalComponents) {
    RunSize wide{.rows = 4000, .columns = 8000, .options = {.perplexity = 5.0}};
    const double without = estimate_memory(wide).similarities;
    wide.options.start = StartKind::Pca;
    EXPECT_GT(estimate_memory(wide).similarities, without);
    // Beside the input, which is copied.
    EXPECT_GT(estimate_memory(wide).similarities, 48.0 * 4000 * 4000 + 16.0 * 4000 * 8000);
    wide = kExact;
    wide.columns = 1000;
    const double of_columns = estimate_memory(wide).similarities;
    wide.options.pca = 50;
    EXPECT_LT(estimate_memory(wide).similarities, of_columns - 8.0 * 800 * 20000);
}

TEST(EstimateMemory, CountsClusters) {
    RunSize clusters = kBarnesHut;
    clusters.has_clusters = true;
    const double entries = 100000.0 * 90.0;
    EXPECT_GT(estimate_memory(clusters).clusters, 60.0 * entries);
    EXPECT_EQ(estimate_memory(clusters).fitting,
              estimate_memory(kBarnesHut).fitting + 12.0 * entries);
    EXPECT_EQ(estimate_memory(kBarnesHut).clusters, 0.0);
}

TEST(EstimateMemory, DoesNotOverflow) {
    const RunSize huge{.rows = 2147483647, .columns = 2147483647, .options = {.theta = 0.0}};
    EXPECT_GT(estimate_memory(huge).peak(), 7e19);
    EXPECT_TRUE(std::isfinite(estimate_memory(huge).peak()));
    EXPECT_GT(estimate_memory(RunSize()).peak(), 1e6);
    EXPECT_LT(estimate_memory(RunSize()).peak(), 1e8);
}

TEST(EstimateMemory, OfAMillionRowsIsWhatALaptopHas) {
    RunSize size{.rows = 1'000'000,
                 .columns = 50,
                 .options = {.perplexity = 30.0, .start = StartKind::Sample},
                 .threads = 2};
    EXPECT_LT(estimate_memory(size).peak(), 8e9);
    size.options.affinity = AffinityKind::Uniform;
    EXPECT_LT(estimate_memory(size).peak(), 5e9);
    size.rows *= 10;
    EXPECT_LT(estimate_memory(size).peak(), 20e9);
}

TEST(EstimateMemory, CountsNoValuesOfUniformAffinities) {
    RunSize size = kBarnesHut;
    size.options.perplexity = 30.0;
    size.options.neighbours = 90;
    const double with_values = estimate_memory(size).fitting;
    size.options.affinity = AffinityKind::Uniform;
    EXPECT_NEAR(with_values - estimate_memory(size).fitting, 8.0 * 1.6 * 90.0 * 100000.0, 1.0);
}

TEST(EstimateMemory, CountsTheNeighboursThatASampleIsSpreadBy) {
    RunSize size = kBarnesHut;
    const double without = estimate_memory(size).similarities;
    size.options.start = StartKind::Sample;
    EXPECT_EQ(estimate_memory(size).similarities, without + 4.0 * 90.0 * 100000.0);
}

TEST(EstimateMemory, CountsTheFitOfASample) {
    RunSize size = kBarnesHut;
    EXPECT_EQ(estimate_memory(size).sample, 0.0);
    size.options.start = StartKind::Sample;
    // The sample's input, affinities and forces stand beside those of the whole.
    const double beside = estimate_memory(size).sample - estimate_memory(size).fitting;
    RunSize sampled = size;
    sampled.rows = 10'000;
    sampled.options.start = StartKind::Pca;
    const MemoryEstimate own = estimate_memory(sampled);
    const double own_rest = 14e6 + 80.0 * 10'000.0;
    const double graph = 4.0 * 90.0 * 100'000.0;
    EXPECT_GT(beside, graph + std::max(own.similarities, own.fitting) - own_rest - 1e6);
    EXPECT_LT(beside, graph + std::max(own.similarities, own.fitting) + 2e6);
    EXPECT_GE(estimate_memory(size).peak(), estimate_memory(size).sample);
    // Most of the exact method are matrices of all pairs.
    size.options.theta = 0.0;
    EXPECT_NEAR(estimate_memory(size).sample - estimate_memory(size).fitting,
                16.0 * 10'000.0 * 10'000.0 + 300.0 * 100'000.0,
                3e7);
}

TEST(EstimateMemory, CountsTheFitsOfSeveralSeedsThatRunSideBySide) {
    RunSize size = kExact;
    size.threads = 4;
    const double one = estimate_memory(size).peak();
    size.seeds = 9;
    // Matrices of four fits.
    EXPECT_NEAR(estimate_memory(size).peak(), 4.0 * one, 0.1 * one);
    size.seeds = 3;
    EXPECT_NEAR(estimate_memory(size).peak(), 2.0 * one, 0.1 * one);
    size.seeds_at_once = 1;
    EXPECT_NEAR(estimate_memory(size).peak(), one, 0.1 * one);
    EXPECT_GT(estimate_memory(size).peak(), one);
}

TEST(EstimateMemory, CountsOtherMapsSideBySide) {
    RunSize size = kBarnesHut;
    size.threads = 4;
    EXPECT_EQ(estimate_memory(size).stability, 0.0);
    const double fitting = estimate_memory(size).fitting;
    size.other_maps = 10;
    EXPECT_EQ(estimate_memory(size).fitting, fitting + 8.0 * 100000 * 50);
    const double four = estimate_memory(size).stability;
    EXPECT_EQ(estimate_memory(size).peak(), four);
    size.seeds_at_once = 1;
    EXPECT_LT(estimate_memory(size).stability, 0.5 * four);
}

}  // namespace
}  // namespace ovik
