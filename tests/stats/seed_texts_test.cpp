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

TEST(SeedTexts, TellHowFarMapsAgree) {
    EXPECT_EQ(agreement_text({0.01234, 10, 0.61254}),
              "Procrustes disparity 0.0123, 61.3 % of the 10 nearest neighbours shared");
}

}  // namespace
}  // namespace ovik
