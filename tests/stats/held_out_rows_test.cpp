#include "tests/support/held_out_rows.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(HeldOutRows, LieNearerToTheirNeighboursOnTheWholeMapThanTheMeanOfTheNearest) {
    const test::HeldOutGenes genes("brauer2008_chemostat.tsv", 1'000'000);
    const test::HeldOutDistances distances = genes.measure(30.0, 1000);
    EXPECT_LT(distances.placed, 0.8 * distances.mean_of_nearest);
    EXPECT_LT(distances.placed, distances.start);
}

}  // namespace
}  // namespace ovik
