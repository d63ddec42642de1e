#include "tools/stage_progress.h"

#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::size_t kWide = 200;

class Progress : public testing::Test {
  protected:
    StageProgress::Time now_{seconds(1000)};
    StageProgress progress_{[this] { return now_; }};
};

TEST_F(Progress, SaysNothingBeforeTheFirstStageAndInItsFirstMoments) {
    EXPECT_EQ(progress_.line(kWide), "");
    EXPECT_EQ(progress_.timeLeft(), "");
    progress_.at(Stage::Neighbours, 0, 100);
    now_ += milliseconds(1400);
    progress_.at(Stage::Neighbours, 50, 100);
    EXPECT_EQ(progress_.line(kWide), "");
    EXPECT_EQ(progress_.timeLeft(), "");
    now_ += milliseconds(100);
    EXPECT_EQ(progress_.line(kWide), "Neighbours: 50 % of 100 rows, about 2 s left");
    EXPECT_EQ(progress_.timeLeft(), "about 2 s left");
}

TEST_F(Progress, TellsHowLongTheRestTakesAtThisRate) {
    progress_.at(Stage::Reading, 0, 2'500'000'000);
    now_ += seconds(30);
    EXPECT_EQ(progress_.line(kWide), "Reading: 0 % of 2.5 GB");
    progress_.at(Stage::Reading, 500'000'000, 2'500'000'000);
    EXPECT_EQ(progress_.line(kWide), "Reading: 20 % of 2.5 GB, about 2 min left");
    progress_.at(Stage::Reading, 2'499'999'999, 2'500'000'000);
    EXPECT_EQ(progress_.line(kWide), "Reading: 99 % of 2.5 GB, about 1 s left");
    progress_.at(Stage::Reading, 2'500'000'000, 2'500'000'000);
    EXPECT_EQ(progress_.line(kWide), "");
}

TEST_F(Progress, CountsFromWhereTheStageBegan) {
    progress_.at(Stage::Iterations, 501, 1001);
    now_ += seconds(100);
    progress_.at(Stage::Iterations, 601, 1001);
    EXPECT_EQ(progress_.line(kWide), "Iterations: 60 % of 1001, about 7 min left");
}

TEST_F(Progress, TellsHowLongAStageOfUnknownLengthHasTaken) {
    progress_.at(Stage::Figure, 0, 0);
    now_ += seconds(12);
    EXPECT_EQ(progress_.line(kWide), "Figure: 12 s so far");
    progress_.at(Stage::Figure, 1, 1);
    EXPECT_EQ(progress_.line(kWide), "");
    // The next one has its own time.
    progress_.at(Stage::Table, 0, 0);
    EXPECT_EQ(progress_.line(kWide), "");
    EXPECT_EQ(progress_.stage(), Stage::Table);
}

TEST_F(Progress, HasRoomOnNarrowTerminals) {
    progress_.at(Stage::Neighbours, 0, 1'000'000);
    now_ += seconds(60);
    progress_.at(Stage::Neighbours, 250'000, 1'000'000);
    EXPECT_EQ(progress_.line(51), "Neighbours: 25 % of 1000000 rows, about 3 min left");
    for (std::size_t room = 0; room <= 60; ++room) {
        EXPECT_LE(progress_.line(room).size(), room);
    }
    EXPECT_EQ(progress_.line(40), "Neighbours: 25 %, about 3 min left");
    EXPECT_EQ(progress_.line(25), "Neighbours: 25 %, 3 min");
    EXPECT_EQ(progress_.line(12), "25 %, 3 min");
    EXPECT_EQ(progress_.line(10), "");
    progress_.at(Stage::Page, 0, 0);
    now_ += seconds(60);
    EXPECT_EQ(progress_.line(12), "60 s so far");
    EXPECT_EQ(progress_.line(5), "");
}

TEST_F(Progress, NeverHasMoreThanAllDone) {
    progress_.at(Stage::Neighbours, 0, 10);
    now_ += seconds(60);
    progress_.at(Stage::Neighbours, 12, 10);
    EXPECT_EQ(progress_.line(kWide), "");
}

TEST(DurationText, HasAUnitThatAReaderCanTakeIn) {
    EXPECT_EQ(duration_text(0.2), "1 s");
    EXPECT_EQ(duration_text(98.5), "99 s");
    EXPECT_EQ(duration_text(100.0), "2 min");
    EXPECT_EQ(duration_text(5900.0), "99 min");
    EXPECT_EQ(duration_text(12000.0), "3 h 20 min");
    EXPECT_EQ(duration_text(1e300), duration_text(1e9));
}

}  // namespace
}  // namespace ovik::tool
