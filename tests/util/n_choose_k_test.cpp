#include "util/n_choose_k.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(NChooseK, CountsPairs) {
    EXPECT_EQ(n_choose_k(1, 2), 0U);
    EXPECT_EQ(n_choose_k(2, 2), 1U);
    EXPECT_EQ(n_choose_k(3, 2), 3U);
    EXPECT_EQ(n_choose_k(50, 2), 1225U);
}

TEST(NChooseK, HandlesTheEnds) {
    EXPECT_EQ(n_choose_k(0, 0), 1U);
    EXPECT_EQ(n_choose_k(0, 1), 0U);
    EXPECT_EQ(n_choose_k(7, 0), 1U);
    EXPECT_EQ(n_choose_k(7, 7), 1U);
    EXPECT_EQ(n_choose_k(4294967295U, 1), 4294967295U);
    EXPECT_EQ(n_choose_k(4294967295U, 4294967294U), 4294967295U);
}

TEST(NChooseK, FollowsPascalsRule) {
    for (unsigned int n = 1; n <= 33; ++n) {
        for (unsigned int k = 1; k <= n; ++k) {
            EXPECT_EQ(n_choose_k(n, k), n_choose_k(n - 1, k - 1) + n_choose_k(n - 1, k));
        }
    }
}

TEST(NChooseK, RefusesWhatDoesNotFit) {
    EXPECT_EQ(n_choose_k(92682, 2), 4294930221U);
    EXPECT_THROW(n_choose_k(92683, 2), std::overflow_error);
    EXPECT_THROW(n_choose_k(4000000000U, 2000000000U), std::overflow_error);
}

}  // namespace
}  // namespace ovik
