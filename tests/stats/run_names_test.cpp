#include "stats/run_names.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(NeighbourhoodText, IsThePerplexityAsItAlwaysWas) {
    EXPECT_EQ(neighbourhood_text({.perplexity = 30.0}, 2), "perplexity = 30.00");
    EXPECT_EQ(neighbourhood_text({.perplexity = 12.75}, 1), "perplexity = 12.7");
}

TEST(NeighbourhoodText, SaysWhatRunsWithoutAPerplexityHave) {
    EXPECT_EQ(neighbourhood_text({.affinity = AffinityKind::Uniform, .neighbours = 15}, 2),
              "uniform affinities of 15 neighbours");
    EXPECT_EQ(neighbourhood_text({.multiscale = {10.0, 12.5}}, 2), "perplexities = 10, 12.5");
}

TEST(ChoicesText, IsEmptyForTheClassicalRunWithAnyNumbers) {
    EXPECT_EQ(choices_text({}), "");
    EXPECT_EQ(choices_text({.perplexity = 5.0, .seed = 3, .learning_rate = 50.0}), "");
}

TEST(ChoicesText, SaysWhatIsChosen) {
    EXPECT_EQ(
        choices_text(
            {.metric = MetricKind::Pearson, .multiscale = {10.0, 50.0}, .automatic_rate = true}),
        "learning-rate auto, metric pearson, multiscale 10,50");
}

TEST(ResultStem, TellsRunsApart) {
    EXPECT_EQ(result_stem({.perplexity = 12.75}, "_b"), "tsne_12_7_b");
    EXPECT_EQ(result_stem({.affinity = AffinityKind::Uniform, .neighbours = 15}, ""),
              "tsne_uniform_15");
    EXPECT_EQ(result_stem({.multiscale = {10.0, 12.5}}, "_b"), "tsne_10_0_12_5_b");
}

}  // namespace
}  // namespace ovik
