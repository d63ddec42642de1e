#include "tools/standard_streams.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

std::string complaint(std::string_view message) {
    testing::internal::CaptureStderr();
    complain(message);
    return testing::internal::GetCapturedStderr();
}

TEST(Complain, NamesTheProgramBeforeTheFirstLine) {
    EXPECT_EQ(complaint("no such file"), "ovik-tsne: no such file\n");
    EXPECT_EQ(complaint("one\ntwo"), "ovik-tsne: one\ntwo\n");
}

TEST(Complain, PrintsNoBytesThatAreNoText) {
    EXPECT_EQ(complaint("100 %s"), "ovik-tsne: 100 %s\n");
    EXPECT_EQ(complaint("gr\xc3\xbc\xc3\x9f"
                        "e"),
              "ovik-tsne: gr\xc3\xbc\xc3\x9f"
              "e\n");
    for (const char* const odd : {"a\x1b[31mb",
                                  "a\rb",
                                  "a\xff"
                                  "b",
                                  "a\tb"}) {
        const std::string text = complaint(odd);
        EXPECT_EQ(text.find_first_of("\x1b\r\xff\t"), std::string::npos) << text;
        EXPECT_EQ(text.substr(0, 12), "ovik-tsne: a");
        EXPECT_EQ(text.substr(text.size() - 2), "b\n");
    }
}

TEST(FlushStandardStreams, ReportsNothingWhereAllWasPrinted) {
    testing::internal::CaptureStdout();
    std::fputs("text", stdout);
    EXPECT_TRUE(flush_standard_streams());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "text");
}

/// Each of these spoils streams of a process of its own.
class SpoiltStreamsDeathTest : public testing::Test {
  protected:
    SpoiltStreamsDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    /// Ends the process with a status that tells how it went.
    [[noreturn]] static void endWith(bool went_well) { std::_Exit(went_well ? 0 : 1); }
};

TEST_F(SpoiltStreamsDeathTest, AreReportedWhenStandardOutputIsFull) {
    EXPECT_EXIT(
        {
            endWith(std::freopen("/dev/full", "w", stdout) != nullptr &&
                    std::fputs("text", stdout) >= 0 && !flush_standard_streams());
        },
        testing::ExitedWithCode(0),
        "^ovik-tsne: standard output could not be written \\(No space left on device\\)\n$");
}

TEST_F(SpoiltStreamsDeathTest, AreReportedWhenLinesWereLostBefore) {
    EXPECT_EXIT(
        {
            const bool is_lost = std::freopen("/dev/full", "w", stdout) != nullptr &&
                                 std::fputs("text", stdout) >= 0 && std::fflush(stdout) != 0;
            endWith(is_lost && !flush_standard_streams());
        },
        testing::ExitedWithCode(0),
        "^ovik-tsne: standard output could not be written \\(lines were lost\\)\n$");
}

TEST_F(SpoiltStreamsDeathTest, CountWhenStandardErrorIsFull) {
    EXPECT_EXIT(
        {
            endWith(std::freopen("/dev/full", "w", stderr) != nullptr &&
                    std::setvbuf(stderr, nullptr, _IONBF, 0) == 0 &&
                    std::fputs("text", stderr) == EOF && !flush_standard_streams());
        },
        testing::ExitedWithCode(0),
        "");
}

TEST_F(SpoiltStreamsDeathTest, KeepTheirNumbersFromFilesWhenTheyWereClosed) {
    EXPECT_EXIT(
        {
            for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
                close(descriptor);
            }
            reserve_standard_streams();
            char byte = 0;
            // Reading and writing fail as with a stream that is closed.
            endWith(open("/dev/null", O_RDONLY) > STDERR_FILENO &&
                    read(STDIN_FILENO, &byte, 1) == -1 && write(STDOUT_FILENO, &byte, 1) == -1 &&
                    write(STDERR_FILENO, &byte, 1) == -1);
        },
        testing::ExitedWithCode(0),
        "");
}

TEST_F(SpoiltStreamsDeathTest, AreLeftAloneWhileTheyAreOpen) {
    EXPECT_EXIT(
        {
            reserve_standard_streams();
            endWith(std::fputs("still there", stderr) >= 0);
        },
        testing::ExitedWithCode(0),
        "^still there$");
}

}  // namespace
}  // namespace ovik::tool
