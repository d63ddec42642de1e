#include "stats/schedule.h"

#include <cmath>
#include <limits>

#include <climits>
#include <gtest/gtest.h>

namespace ovik {
namespace {

constexpr std::size_t kRows = 3000;
constexpr FitOptions kOptions{.max_iter = 40, .stop_lying_iter = 10, .mom_switch_iter = 20};

TEST(Schedule, EndsWithTheLastIteration) {
    EXPECT_EQ(Schedule(kOptions, kRows).lastIteration(), 40);
}

TEST(Schedule, TakesTheStepOfTheIterationThatEndsExaggerationAgainstExaggeratedSimilarities) {
    const Schedule schedule(kOptions, kRows);
    EXPECT_EQ(schedule.exaggeration(), 12.0);
    EXPECT_TRUE(schedule.isExaggerated(0));
    EXPECT_TRUE(schedule.isExaggerated(10));
    EXPECT_FALSE(schedule.isExaggerated(11));
    EXPECT_FALSE(schedule.endsExaggeration(9));
    EXPECT_TRUE(schedule.endsExaggeration(10));
    EXPECT_FALSE(schedule.endsExaggeration(11));
}

TEST(Schedule, ChangesTheMomentumAfterTheIterationOfTheSwitch) {
    const Schedule schedule(kOptions, kRows);
    EXPECT_EQ(schedule.momentum(0), 0.5);
    EXPECT_EQ(schedule.momentum(20), 0.5);
    EXPECT_EQ(schedule.momentum(21), 0.8);
    EXPECT_EQ(schedule.momentum(INT_MAX), 0.8);
}

TEST(Schedule, HasChangesAtTheFirstIteration) {
    const Schedule schedule(FitOptions{.stop_lying_iter = 0, .mom_switch_iter = 0}, kRows);
    EXPECT_TRUE(schedule.isExaggerated(0));
    EXPECT_TRUE(schedule.endsExaggeration(0));
    EXPECT_FALSE(schedule.isExaggerated(1));
    EXPECT_EQ(schedule.momentum(0), 0.5);
    EXPECT_EQ(schedule.momentum(1), 0.8);
}

TEST(Schedule, NeverComesToAChangeAtANegativeIteration) {
    const Schedule schedule(FitOptions{.stop_lying_iter = -1, .mom_switch_iter = -1}, kRows);
    for (const int iteration : {0, 1, 250, INT_MAX}) {
        EXPECT_TRUE(schedule.isExaggerated(iteration));
        EXPECT_FALSE(schedule.endsExaggeration(iteration));
        EXPECT_EQ(schedule.momentum(iteration), 0.5);
    }
}

TEST(Schedule, IsThatOfTheOptionsAsTheyWere) {
    FitOptions options = kOptions;
    const Schedule schedule(options, kRows);
    options = {};
    EXPECT_EQ(schedule.lastIteration(), 40);
    EXPECT_TRUE(schedule.endsExaggeration(10));
}

constexpr FitOptions kAnnealed{.max_iter = 400,
                               .exaggeration = 5.0,
                               .momentum = 0.3,
                               .final_momentum = 0.95,
                               .schedule = ScheduleKind::Annealed,
                               .hold_iter = 20,
                               .release_iter = 3};

TEST(Schedule, LetsExaggerationFallInEqualStepsWhenAnnealed) {
    const Schedule schedule(kAnnealed, kRows);
    EXPECT_EQ(schedule.annealing(0), 5.0);
    EXPECT_EQ(schedule.annealing(19), 5.0);
    EXPECT_EQ(schedule.annealing(20), 4.0);
    EXPECT_EQ(schedule.annealing(21), 3.0);
    EXPECT_EQ(schedule.annealing(22), 2.0);
    EXPECT_EQ(schedule.annealing(23), 1.0);
    EXPECT_EQ(schedule.annealing(1'000'000'000), 1.0);
    EXPECT_EQ(schedule.endOfExaggeration(), 22);
}

TEST(Schedule, CanHaveOnlyOnePhaseOfExaggerationWhenAnnealedOrNone) {
    FitOptions options = kAnnealed;
    options.release_iter = 0;
    const Schedule held(options, kRows);
    EXPECT_EQ(held.annealing(19), 5.0);
    EXPECT_EQ(held.annealing(20), 1.0);
    EXPECT_EQ(held.endOfExaggeration(), 19);
    options.hold_iter = 0;
    const Schedule none(options, kRows);
    EXPECT_EQ(none.annealing(0), 1.0);
    EXPECT_EQ(none.momentum(0), 0.95);
    EXPECT_TRUE(none.isMark(0));
    options.hold_iter = options.release_iter = INT_MAX;
    const Schedule endless(options, kRows);
    EXPECT_EQ(endless.annealing(1'000'000'000), 5.0);
    EXPECT_FALSE(endless.isMark(1'000'000'000));
}

TEST(Schedule, LeavesStoredAffinitiesAsTheyAreWhenAnnealed) {
    const Schedule schedule(kAnnealed, kRows);
    EXPECT_EQ(schedule.exaggeration(), 1.0);
    for (const int iteration : {0, 20, 22, 23, 250, 251}) {
        EXPECT_FALSE(schedule.isExaggerated(iteration));
        EXPECT_FALSE(schedule.endsExaggeration(iteration));
        EXPECT_EQ(Schedule(kOptions, kRows).annealing(iteration), 1.0);
    }
}

TEST(Schedule, RaisesAnnealedMomentumOnceNothingIsExaggerated) {
    const Schedule schedule(kAnnealed, kRows);
    EXPECT_EQ(schedule.momentum(0), 0.8);
    EXPECT_EQ(schedule.momentum(22), 0.8);
    EXPECT_EQ(schedule.momentum(23), 0.95);
    FitOptions low = kAnnealed;
    low.final_momentum = 0.6;
    EXPECT_EQ(Schedule(low, kRows).momentum(0), 0.6);
    EXPECT_EQ(Schedule(low, kRows).momentum(23), 0.6);
}

TEST(Schedule, TakesTheLearningRateFromRowsAndExaggerationIfItIsAutomatic) {
    EXPECT_EQ(Schedule(kAnnealed, kRows).learningRate(0), 200.0);
    FitOptions options = kAnnealed;
    options.automatic_rate = true;
    const Schedule annealed(options, kRows);
    EXPECT_EQ(annealed.learningRate(0), 600.0);
    EXPECT_EQ(annealed.learningRate(21), 1000.0);
    EXPECT_EQ(annealed.learningRate(23), 3000.0);
    EXPECT_EQ(Schedule(options, 300).learningRate(0), 200.0);
    EXPECT_EQ(Schedule(options, 300).learningRate(23), 300.0);
    options.schedule = ScheduleKind::Classic;
    const Schedule classic(options, kRows);
    EXPECT_EQ(classic.learningRate(250), 600.0);
    EXPECT_EQ(classic.learningRate(251), 3000.0);
}

TEST(Schedule, MarksEveryFiftiethIterationFromTheEndOfExaggeration) {
    const Schedule annealed(kAnnealed, kRows);
    EXPECT_FALSE(annealed.isMark(-1));
    EXPECT_FALSE(annealed.isMark(0));
    EXPECT_TRUE(annealed.isMark(50));
    EXPECT_FALSE(annealed.isMark(51));
    const Schedule classic(FitOptions(), kRows);
    EXPECT_FALSE(classic.isMark(200));
    EXPECT_TRUE(classic.isMark(250));
    EXPECT_FALSE(Schedule(FitOptions{.stop_lying_iter = -1}, kRows).isMark(500));
}

TEST(Schedule, MayStopAtTheSecondMarkBehindExaggeration) {
    EXPECT_EQ(Schedule(FitOptions(), kRows).firstPossibleStop(), 300);
    EXPECT_EQ(Schedule(FitOptions{.stop_lying_iter = 251}, kRows).firstPossibleStop(), 350);
    EXPECT_EQ(Schedule(FitOptions{.stop_lying_iter = 0}, kRows).firstPossibleStop(), 50);
    EXPECT_GT(Schedule(FitOptions{.stop_lying_iter = -1}, kRows).firstPossibleStop(), INT_MAX);
}

TEST(Schedule, IsSettledWhereTheCostGainsLessThanTheLeast) {
    FitOptions options = kAnnealed;
    options.stop_when = 0.125;
    const Schedule schedule(options, kRows);
    EXPECT_TRUE(schedule.isSettled(100, 8.0, 8.5));
    EXPECT_FALSE(schedule.isSettled(100, 8.0, 9.0));
    EXPECT_FALSE(schedule.isSettled(101, 8.0, 8.5));
    // A cost that has grown has gained nothing.
    EXPECT_TRUE(schedule.isSettled(100, 8.0, 7.0));
    EXPECT_FALSE(schedule.isSettled(50, 8.0, std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(schedule.isSettled(100, std::nan(""), 8.0));
    options.stop_when = 0.0;
    EXPECT_FALSE(Schedule(options, kRows).isSettled(100, 8.0, 7.0));
}

}  // namespace
}  // namespace ovik
