#include "stats/number_list.h"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;

TEST(NumberList, IsEmptyAtFirst) {
    constexpr NumberList kNone;
    EXPECT_TRUE(kNone.empty());
    EXPECT_EQ(kNone.size(), 0U);
    EXPECT_EQ(kNone.begin(), kNone.end());
}

TEST(NumberList, KeepsNumbersInTheirOrder) {
    NumberList list{50.0, 10.0};
    list.add(50.0);
    EXPECT_THAT(std::vector<double>(list.begin(), list.end()), ElementsAre(50.0, 10.0, 50.0));
    EXPECT_EQ(list[1], 10.0);
    EXPECT_EQ(list.size(), 3U);
    EXPECT_EQ(list, (NumberList{50.0, 10.0, 50.0}));
    EXPECT_NE(list, (NumberList{50.0, 10.0}));
    EXPECT_NE(list, (NumberList{50.0, 10.0, 50.0, 0.0}));
}

TEST(NumberList, RefusesMoreThanItHolds) {
    NumberList list{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0};
    EXPECT_EQ(list.size(), NumberList::kMost);
    EXPECT_THROW(list.add(9.0), std::length_error);
    EXPECT_EQ(list[7], 8.0);
}

}  // namespace
}  // namespace ovik
