#include "util/stage.h"

#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(StageCount, TellsOfEveryStepOnceWhoeverTakesIt) {
    constexpr std::uint64_t kSteps = 1000;
    std::atomic<std::uint64_t> sum = 0;
    std::atomic<std::uint64_t> calls = 0;
    const OnStage on_stage = [&](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Neighbours);
        EXPECT_EQ(total, 2 * kSteps);
        sum += done;
        ++calls;
    };
    StageCount count(on_stage, Stage::Neighbours, 2 * kSteps);
    EXPECT_EQ(calls, 1U);
    const auto work = [&count] {
        for (std::uint64_t n = 0; n < kSteps; ++n) {
            count.step();
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(calls, 2 * kSteps + 1);
    EXPECT_EQ(sum, kSteps * (2 * kSteps + 1));
}

TEST(StageCount, NeedsNobodyWhoListens) {
    const OnStage nobody;
    StageCount count(nobody, Stage::Neighbours, 3);
    EXPECT_NO_THROW(count.step());
    EXPECT_NO_THROW(tell(nobody, Stage::Page, 0, 0));
}

}  // namespace
}  // namespace ovik
