#include "util/stage_count.h"

#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(StageCount, TellsOfTheBeginAndTheEndWhoeverCounts) {
    constexpr std::uint64_t kSteps = 1000;
    std::uint64_t last = 0;
    std::uint64_t calls = 0;
    const OnStage on_stage = [&](Stage stage, std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(stage, Stage::Neighbours);
        EXPECT_EQ(total, 2 * kSteps);
        EXPECT_EQ(calls == 0, done == 0);
        EXPECT_GE(done, last);
        last = done;
        ++calls;
    };
    StageCount count(on_stage, Stage::Neighbours, 2 * kSteps);
    EXPECT_EQ(calls, 1U);
    const auto work = [&count] {
        for (std::uint64_t n = 0; n < kSteps; ++n) {
            count.add(1);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(last, 2 * kSteps);
    EXPECT_GE(calls, kSteps);
}

TEST(StageCount, IsStoppedByAnExceptionOfTheListener) {
    int calls = 0;
    const OnStage on_stage = [&](Stage, std::uint64_t done, std::uint64_t) {
        ++calls;
        if (done == 4) {
            throw std::runtime_error("enough");
        }
    };
    StageCount count(on_stage, Stage::Neighbours, 9);
    count.add(3);
    EXPECT_FALSE(count.isStopped());
    EXPECT_THROW(count.add(1), std::runtime_error);
    EXPECT_TRUE(count.isStopped());
    EXPECT_NO_THROW(count.add(5));
    EXPECT_EQ(calls, 3);
}

TEST(StageCount, NeedsNobodyWhoListens) {
    const OnStage nobody;
    StageCount count(nobody, Stage::Neighbours, 3);
    EXPECT_NO_THROW(count.add(3));
    EXPECT_FALSE(count.isStopped());
}

}  // namespace
}  // namespace ovik
