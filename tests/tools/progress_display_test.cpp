#include "tools/progress_display.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/console.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;

/// What a terminal shows of a line in which the cursor steps back.
std::string visible(const std::string& bytes) {
    std::string line;
    std::size_t cursor = 0;
    for (const char byte : bytes) {
        if (byte == '\b') {
            cursor -= cursor > 0 ? 1 : 0;
        } else if (byte == '\r') {
            cursor = 0;
        } else {
            line.resize(std::max(line.size(), cursor + 1), ' ');
            line[cursor++] = byte;
        }
    }
    const std::size_t last = line.find_last_not_of(' ');
    return last == std::string::npos ? "" : line.substr(0, last + 1);
}

/// Standard error, and if wanted standard output, are a terminal of its own while it lives.
class Terminal {
  public:
    explicit Terminal(unsigned short columns, bool with_output = false)
        : saved_error_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)),
          saved_output_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)) {
        std::fflush(stdout);
        int inside = -1;
        winsize size{24, columns, 0, 0};
        if (openpty(&outside_, &inside, nullptr, nullptr, &size) == 0) {
            dup2(inside, STDERR_FILENO);
            if (with_output) {
                dup2(inside, STDOUT_FILENO);
            }
            close(inside);
        }
    }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    ~Terminal() {
        std::fflush(stdout);
        dup2(saved_error_, STDERR_FILENO);
        dup2(saved_output_, STDOUT_FILENO);
        close(saved_error_);
        close(saved_output_);
        close(outside_);
    }

    /// Reads until a text is shown, for some seconds at most; all bytes so far.
    std::string readUntil(const std::string& text) {
        constexpr int kPatience = 20'000;  // milliseconds
        pollfd waiting{outside_, POLLIN, 0};
        while (bytes_.find(text) == std::string::npos && poll(&waiting, 1, kPatience) == 1) {
            readSome();
        }
        return bytes_;
    }

    /// All bytes that are there.
    std::string readAll() {
        pollfd waiting{outside_, POLLIN, 0};
        while (poll(&waiting, 1, 0) == 1) {
            readSome();
        }
        return bytes_;
    }

  private:
    void readSome() {
        char part[4096];
        const ssize_t count = read(outside_, part, sizeof part);
        bytes_.append(part, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }

    int saved_error_;
    int saved_output_;
    int outside_ = -1;
    std::string bytes_;
};

/// A clock on which ten seconds pass whenever somebody looks.
StageProgress::Clock fast_clock() {
    const auto looks = std::make_shared<std::atomic<int>>(0);
    return [looks] { return StageProgress::Time(std::chrono::seconds(10 * looks->fetch_add(1))); };
}

class Display : public testing::Test {
  protected:
    void SetUp() override { setenv("TERM", "xterm", 1); }

    void TearDown() override {
        if (term_) {
            setenv("TERM", term_->c_str(), 1);
        } else {
            unsetenv("TERM");
        }
    }

  private:
    std::optional<std::string> term_ = std::getenv("TERM") != nullptr
                                           ? std::optional<std::string>(std::getenv("TERM"))
                                           : std::nullopt;
};

TEST_F(Display, ShowsALineThatIsGoneBeforeOthersAndAtTheEnd) {
    Terminal terminal(80);
    {
        ProgressDisplay display(true, fast_clock());
        const OnStage on_stage = display.onStage();
        ASSERT_TRUE(on_stage);
        on_stage(Stage::Neighbours, 0, 1000);
        on_stage(Stage::Neighbours, 250, 1000);
        EXPECT_THAT(terminal.readUntil(" left"),
                    HasSubstr("Neighbours: 25 % of 1000 rows, about "));
        print_remark("Told.\n");
        const std::string all = terminal.readUntil("Told.\r\n");
        EXPECT_EQ(visible(all.substr(0, all.find("\r\n"))), "Told.");
    }
    const std::string all = terminal.readAll();
    EXPECT_EQ(visible(all.substr(all.rfind('\n') + 1)), "");
}

TEST_F(Display, StandsBehindTheBarOfTheIterations) {
    Terminal terminal(160, true);
    std::string bar;
    {
        ProgressDisplay display(true, fast_clock());
        const OnStage on_stage = display.onStage();
        on_stage(Stage::Iterations, 1, 100);
        progress_bar<double>("Got error of 1.5 at iteration", 1, 100, "");
        on_stage(Stage::Iterations, 2, 100);
        terminal.readUntil(" left");
        bar = visible(terminal.readAll());
        EXPECT_EQ(bar.find("-- Got error of 1.5 at iteration (1/100) ["), 0U) << bar;
        EXPECT_THAT(bar, HasSubstr("1.00% completed about "));
        // Nothing of it stays when the next bar, or the end of the line, comes.
        end_progress_bar();
        std::fflush(stdout);
    }
    const std::string all = terminal.readUntil("\n");
    EXPECT_THAT(visible(all.substr(0, all.find('\n') - 1)), testing::EndsWith("1.00% completed"));
}

TEST_F(Display, IsNotDrawnWhileOthersPrint) {
    Terminal terminal(80, true);
    ProgressDisplay display(true, fast_clock());
    const OnStage on_stage = display.onStage();
    on_stage(Stage::Neighbours, 0, 1000);
    on_stage(Stage::Neighbours, 250, 1000);
    terminal.readUntil(" left");
    std::size_t before = 0;
    {
        const ClearedPlace place;
        // What was written to a terminal comes a little later.
        for (int look = 0; look < 1000 && !visible(terminal.readAll()).empty(); ++look) {
            poll(nullptr, 0, 5);
        }
        before = terminal.readAll().size();
        std::printf("half a line");
        // Longer than the display pauses.
        poll(nullptr, 0, 450);
        EXPECT_EQ(terminal.readAll().size(), before);
    }
    EXPECT_THAT(terminal.readUntil("half a line").substr(before),
                testing::StartsWith("half a line"));
}

TEST_F(Display, ShowsNothingWhereItIsNotWantedOrCannotBe) {
    const auto nothing_is_shown = [](unsigned short columns, bool is_wanted) {
        Terminal terminal(columns);
        ProgressDisplay display(is_wanted, fast_clock());
        return !display.onStage() && terminal.readAll().empty();
    };
    EXPECT_TRUE(nothing_is_shown(80, false));
    setenv("TERM", "dumb", 1);
    EXPECT_TRUE(nothing_is_shown(80, true));
    unsetenv("TERM");
    EXPECT_TRUE(nothing_is_shown(80, true));
    setenv("TERM", "xterm", 1);
    testing::internal::CaptureStderr();
    {
        ProgressDisplay display(true, fast_clock());
        EXPECT_FALSE(display.onStage());
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Display, KeepsToTheWidthOfTheTerminal) {
    Terminal terminal(24);
    ProgressDisplay display(true, fast_clock());
    const OnStage on_stage = display.onStage();
    on_stage(Stage::Neighbours, 0, 1000);
    on_stage(Stage::Neighbours, 500, 1000);
    EXPECT_THAT(terminal.readUntil(" %"), HasSubstr("Neighbours: 50 %"));
    EXPECT_LE(visible(terminal.readAll()).size(), 23U);
}

}  // namespace
}  // namespace ovik::tool
