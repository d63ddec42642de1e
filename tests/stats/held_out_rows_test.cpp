#include "tests/support/held_out_rows.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

// Sanitizers see the like of it in the tests of stats/row_placement.cpp, in a fraction of the time.
#ifndef OVIK_SANITIZED

TEST(HeldOutRows, LieNearerToTheirNeighboursOnTheWholeMapThanTheMeanOfTheNearest) {
    const test::HeldOutGenes genes("brauer2008_chemostat.tsv", 1'000'000);
    const test::HeldOutDistances distances = genes.measure(30.0, 1000);
    EXPECT_LT(distances.placed, 0.8 * distances.mean_of_nearest);
    EXPECT_LT(distances.placed, distances.start);
}

#endif

}  // namespace
}  // namespace ovik
