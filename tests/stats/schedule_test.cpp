#include "stats/schedule.h"

#include <climits>
#include <gtest/gtest.h>

namespace ovik {
namespace {

constexpr FitOptions kOptions{.max_iter = 40, .stop_lying_iter = 10, .mom_switch_iter = 20};

TEST(Schedule, EndsWithTheLastIteration) {
    EXPECT_EQ(Schedule(kOptions).lastIteration(), 40);
}

TEST(Schedule, TakesTheStepOfTheIterationThatEndsExaggerationAgainstExaggeratedSimilarities) {
    const Schedule schedule(kOptions);
    EXPECT_EQ(schedule.exaggeration(), 12.0);
    EXPECT_TRUE(schedule.isExaggerated(0));
    EXPECT_TRUE(schedule.isExaggerated(10));
    EXPECT_FALSE(schedule.isExaggerated(11));
    EXPECT_FALSE(schedule.endsExaggeration(9));
    EXPECT_TRUE(schedule.endsExaggeration(10));
    EXPECT_FALSE(schedule.endsExaggeration(11));
}

TEST(Schedule, ChangesTheMomentumAfterTheIterationOfTheSwitch) {
    const Schedule schedule(kOptions);
    EXPECT_EQ(schedule.momentum(0), 0.5);
    EXPECT_EQ(schedule.momentum(20), 0.5);
    EXPECT_EQ(schedule.momentum(21), 0.8);
    EXPECT_EQ(schedule.momentum(INT_MAX), 0.8);
}

TEST(Schedule, HasChangesAtTheFirstIteration) {
    const Schedule schedule(FitOptions{.stop_lying_iter = 0, .mom_switch_iter = 0});
    EXPECT_TRUE(schedule.isExaggerated(0));
    EXPECT_TRUE(schedule.endsExaggeration(0));
    EXPECT_FALSE(schedule.isExaggerated(1));
    EXPECT_EQ(schedule.momentum(0), 0.5);
    EXPECT_EQ(schedule.momentum(1), 0.8);
}

TEST(Schedule, NeverComesToAChangeAtANegativeIteration) {
    const Schedule schedule(FitOptions{.stop_lying_iter = -1, .mom_switch_iter = -1});
    for (const int iteration : {0, 1, 250, INT_MAX}) {
        EXPECT_TRUE(schedule.isExaggerated(iteration));
        EXPECT_FALSE(schedule.endsExaggeration(iteration));
        EXPECT_EQ(schedule.momentum(iteration), 0.5);
    }
}

TEST(Schedule, IsThatOfTheOptionsAsTheyWere) {
    FitOptions options = kOptions;
    const Schedule schedule(options);
    options = {};
    EXPECT_EQ(schedule.lastIteration(), 40);
    EXPECT_TRUE(schedule.endsExaggeration(10));
}

}  // namespace
}  // namespace ovik
