#include "util/child_trial.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(Survives, TellsWhetherWorkComesToItsEnd) {
    EXPECT_TRUE(survives([] {}, 1));
    EXPECT_TRUE(survives([] { throw std::runtime_error("in words"); }, 1));
    EXPECT_FALSE(survives([] { std::abort(); }, 1));
    EXPECT_FALSE(survives([] { std::raise(SIGSEGV); }, 1));
}

TEST(Survives, NotWorkThatNeverEnds) {
    EXPECT_FALSE(survives(
        [] {
            for (volatile bool goes_on = true; goes_on;) {
            }
        },
        1));
}

TEST(Survives, LeavesMemoryAsItIs) {
    int value = 1;
    EXPECT_TRUE(survives([&value] { value = 2; }, 1));
    EXPECT_EQ(value, 1);
}

}  // namespace
}  // namespace ovik
