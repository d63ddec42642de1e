#include "util/stage.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(TellOfAStage, NeedsNobodyWhoListens) {
    EXPECT_NO_THROW(tell(OnStage(), Stage::Page, 0, 0));
    std::uint64_t sum = 0;
    tell([&](Stage, std::uint64_t done, std::uint64_t total) { sum = done + total; },
         Stage::Page,
         2,
         3);
    EXPECT_EQ(sum, 5U);
}

}  // namespace
}  // namespace ovik
