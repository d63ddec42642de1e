#include "util/console.h"

#include <functional>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

std::string printed(const std::function<void()>& print) {
    testing::internal::CaptureStdout();
    print();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TEST(PrintText, UsesTheFourColours) {
    EXPECT_EQ(printed([] { print_text("note", 1, '\n'); }), "-- \x1b[31mnote\x1b[0m\n");
    EXPECT_EQ(printed([] { print_text("note", 2, '\n'); }), "-- \x1b[32mnote\x1b[0m\n");
    EXPECT_EQ(printed([] { print_text("note", 3, '\n'); }), "-- \x1b[33mnote\x1b[0m\n");
    EXPECT_EQ(printed([] { print_text("note", 4, '\n'); }), "-- \x1b[34mnote\x1b[0m\n");
}

TEST(PrintText, PrintsOtherColoursWithoutEscapeSequences) {
    for (const int colour : {0, 5, -1}) {
        EXPECT_EQ(printed([=] { print_text("note", colour, '\n'); }), "-- note\n");
    }
}

TEST(PrintText, TakesTheMessageAsTextNotAsFormat) {
    EXPECT_EQ(printed([] { print_text("100 %s %n", 1, '\n'); }), "-- \x1b[31m100 %s %n\x1b[0m\n");
}

TEST(PrintText, ReturnsTheEndCharacter) {
    int returned = 0;
    printed([&] { returned = print_text("note", -1, ' '); });
    EXPECT_EQ(returned, ' ');
}

TEST(PrintInfo, EndsWithANewlineByDefault) {
    EXPECT_EQ(printed([] { print_info("note"); }), "-- note\n");
}

TEST(PrintInfo, PrintsPlainlyWhateverTheReservedArgument) {
    EXPECT_EQ(printed([] { print_info("note", 1, '\n'); }), "-- note\n");
}

TEST(PrintInfo, LeavesTheCursorOnTheLineWithABlankAsEnd) {
    EXPECT_EQ(printed([] {
                  print_info("Random seed: ", -1, ' ');
                  std::printf("%s\n", "11");
              }),
              "-- Random seed:  11\n");
}

TEST(ConsoleSilence, HoldsBackLinesRemarksAndTheBarWhileItLives) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(printed([] {
                  const ConsoleSilence silence;
                  { const ConsoleSilence within; }
                  EXPECT_EQ(print_text("note", 1, '\xff'), 0xff);
                  print_info("note");
                  print_remark("remark");
                  progress_bar<double>("step", 1, 2, "");
                  end_progress_bar();
              }),
              "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(printed([] {
                  print_info("note");
                  print_remark("remark");
                  end_progress_bar();
              }),
              "-- note\n\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "remark");
}

TEST(ConsoleSilence, IsOfItsThreadAlone) {
    EXPECT_EQ(printed([] {
                  const ConsoleSilence silence;
                  std::thread([] { print_info("note"); }).join();
              }),
              "-- note\n");
}

TEST(PrintFileError, IsBoldRedBetweenEmptyLines) {
    EXPECT_EQ(printed([] { print_file_error("I cannot open file", "no/file"); }),
              "\n-- \033[1;31mError: I cannot open file: no/file\n\033[0m\n");
}

std::string bar(int current, int total, const std::string& unit = "") {
    return printed([&] { progress_bar<double>("work", current, total, unit); });
}

TEST(ProgressBar, DrawsAQuarterAsSixOf27) {
    EXPECT_EQ(bar(50, 200), "\r-- work (50/200) [======                     ] 25.00% completed ");
}

TEST(ProgressBar, IsFullAtTheTotal) {
    EXPECT_EQ(bar(200, 200),
              "\r-- work (200/200) [===========================] 100.00% completed ");
}

TEST(ProgressBar, IsEmptyAtZero) {
    EXPECT_EQ(bar(0, 200), "\r-- work (0/200) [                           ] 0.00% completed ");
}

TEST(ProgressBar, InsertsTheUnitBehindTheTotal) {
    EXPECT_EQ(bar(1, 2, "rows"),
              "\r-- work (1/2 rows) [=============              ] 50.00% completed ");
}

TEST(ProgressBar, ComputesTheFractionInItsElementType) {
    // 2097151 / 2097152 * 27 is below 27 in double, 27 in float.
    EXPECT_EQ(printed([] { progress_bar<float>("f", 16777215, 16777216, ""); }),
              "\r-- f (16777215/16777216) [========================== ] 100.00% completed ");
    EXPECT_EQ(printed([] { progress_bar<float>("f", 99999999, 100000000, ""); }),
              "\r-- f (99999999/100000000) [===========================] 100.00% completed ");
    EXPECT_EQ(printed([] { progress_bar<double>("d", 99999999, 100000000, ""); }),
              "\r-- d (99999999/100000000) [========================== ] 100.00% completed ");
}

TEST(ProgressBar, IsEmptyWithoutATotal) {
    // The sign of the NaN is the processor's.
    EXPECT_THAT(bar(0, 0),
                testing::MatchesRegex("\r-- work \\(0/0\\) \\[ {27}\\] -?nan% completed "));
    EXPECT_EQ(bar(1, 0), "\r-- work (1/0) [                           ] inf% completed ");
}

}  // namespace
}  // namespace ovik
