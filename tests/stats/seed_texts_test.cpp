#include "stats/seed_texts.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(SeedTexts, NameTheSeedThatIsKept) {
    SeedReport seeds;
    seeds.runs = {{11, 10, 1.5, true}, {12, 10, 1.25, true}, {13, 10, 1.75, true}};
    seeds.kept = 1;
    EXPECT_EQ(seeds_text(seeds), "11 to 13; 12 has the lowest cost");
    seeds.runs.resize(1);
    seeds.kept = 0;
    EXPECT_EQ(seeds_text(seeds), "11");
}

TEST(SeedTexts, TellTheCostOfEachSeedOrOfManyTheirRange) {
    SeedReport seeds;
    seeds.runs = {{11, 10, 1.5, true}, {12, 10, 1.25, true}};
    EXPECT_EQ(seed_costs_text(seeds), "11: 1.5000, 12: 1.2500");
    for (int seed = 13; seed < 40; ++seed) {
        seeds.runs.push_back({seed, 10, 1.0 + 0.1 * (40 - seed), true});
    }
    EXPECT_EQ(seed_costs_text(seeds), "1.1000 to 3.7000");
}

TEST(SeedTexts, TellHowFarMapsAgree) {
    EXPECT_EQ(agreement_text({0.01234, 10, 0.61254}),
              "Procrustes disparity 0.0123, 61.3 % of the 10 nearest neighbours shared");
}

}  // namespace
}  // namespace ovik
