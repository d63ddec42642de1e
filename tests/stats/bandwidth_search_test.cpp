#include "stats/bandwidth_search.h"

#include <cmath>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(BandwidthSearch, AcceptsOnlyWithinTheTolerance) {
    EXPECT_FALSE(BandwidthSearch().accept(1e-5));
    EXPECT_FALSE(BandwidthSearch().accept(-1e-5));
    EXPECT_TRUE(BandwidthSearch().accept(std::nextafter(1e-5, 0.0)));
    EXPECT_TRUE(BandwidthSearch().accept(std::nextafter(-1e-5, 0.0)));
    EXPECT_FALSE(BandwidthSearch().accept(std::nan("")));
}

TEST(BandwidthSearch, DoublesAndHalvesWithoutBounds) {
    BandwidthSearch up;
    up.accept(1.0);
    up.accept(1.0);
    EXPECT_EQ(up.beta(), 4.0);
    BandwidthSearch down;
    down.accept(-1.0);
    down.accept(-1.0);
    EXPECT_EQ(down.beta(), 0.25);
}

TEST(BandwidthSearch, TakesTheMiddleBetweenBounds) {
    BandwidthSearch search;
    search.accept(1.0);
    search.accept(-1.0);
    EXPECT_EQ(search.beta(), 1.5);
    search.accept(1.0);
    EXPECT_EQ(search.beta(), 1.75);
}

}  // namespace
}  // namespace ovik
