#include "tools/interruption.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <unistd.h>

#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

/// Signals and what is known of them belong to a whole process: each test has one of its own.
class InterruptionDeathTest : public testing::Test {
  protected:
    InterruptionDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    /// Ends the process as the command does, if it is not to go on.
    [[noreturn]] static void endWithStatus() { std::_Exit(interruption_status()); }
};

TEST_F(InterruptionDeathTest, GoesOnWithoutASignal) {
    EXPECT_EXIT(
        {
            watch_for_interruption();
            std::_Exit(goes_on() && interruption_status() == Success ? 7 : 1);
        },
        testing::ExitedWithCode(7),
        "^$");
}

TEST_F(InterruptionDeathTest, EndsAtOnceBeforeTheFirstIteration) {
    constexpr const char* kMessage =
        "^\novik-tsne: interrupted before the first iteration: no results are written\n$";
    EXPECT_EXIT(
        {
            watch_for_interruption();
            std::raise(SIGINT);
        },
        testing::ExitedWithCode(Interrupted),
        kMessage);
    EXPECT_EXIT(
        {
            watch_for_interruption();
            std::raise(SIGTERM);
        },
        testing::ExitedWithCode(Terminated),
        kMessage);
}

TEST_F(InterruptionDeathTest, AsksForTheResultsOnceThereAreSome) {
    for (const int signal : {SIGINT, SIGTERM}) {
        EXPECT_EXIT(
            {
                watch_for_interruption();
                const bool went_on = goes_on();
                errno = EDOM;
                std::raise(signal);
                if (!went_on || errno != EDOM || goes_on() || goes_on()) {
                    std::_Exit(1);
                }
                endWithStatus();
            },
            testing::ExitedWithCode(signal == SIGINT ? Interrupted : Terminated),
            "^\novik-tsne: interrupted: the results of what was reached are written, then the run "
            "ends \\(a second signal stops it at once\\)\n$");
    }
}

TEST_F(InterruptionDeathTest, PromisesKeptFitsBeforeTheFirstHasEnded) {
    EXPECT_EXIT(
        {
            watch_for_interruption();
            promise_kept_fits();
            std::raise(SIGINT);
            if (goes_on()) {
                std::_Exit(1);
            }
            for (;;) {
                std::raise(SIGINT);
                usleep(1000);
            }
        },
        testing::ExitedWithCode(Interrupted),
        "^\novik-tsne: interrupted: the fits that have ended are kept, and the same command goes "
        "on "
        "with them \\(a second signal stops it at once\\)\n"
        "\novik-tsne: interrupted again: stopped at once; the fits that have ended are kept\n$");
}

TEST_F(InterruptionDeathTest, EndsAtOnceAtALaterSignal) {
    EXPECT_EXIT(
        {
            watch_for_interruption();
            goes_on();
            std::raise(SIGTERM);
            // Those that come together with the first one are one with it.
            for (;;) {
                std::raise(SIGINT);
                usleep(1000);
            }
        },
        testing::ExitedWithCode(Interrupted),
        "interrupted again: stopped at once, before all results were written\n$");
}

TEST_F(InterruptionDeathTest, LeavesSignalsThatAreIgnored) {
    EXPECT_EXIT(
        {
            std::signal(SIGINT, SIG_IGN);
            watch_for_interruption();
            std::raise(SIGINT);
            const bool goes_on_after_one = goes_on() && interruption_status() == Success;
            std::raise(SIGTERM);
            if (!goes_on_after_one) {
                std::_Exit(1);
            }
            endWithStatus();
        },
        testing::ExitedWithCode(Terminated),
        "interrupted: the results");
}

}  // namespace
}  // namespace ovik::tool
