#pragma once

#include <csignal>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include "tests/support/command.h"

namespace ovik::test {

/// A program at work in a terminal of its own, in which keys can be typed.
class RunningCommand {
  public:
    /// @param command  program and arguments; an argument needs no quotes
    explicit RunningCommand(const std::vector<std::string>& command) {
        std::vector<std::string> texts = command;
        std::vector<char*> arguments;
        for (std::string& text : texts) {
            arguments.push_back(text.data());
        }
        arguments.push_back(nullptr);
        pid_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
        if (pid_ == 0) {
            keepOutputWhenInterrupted();
            execv(arguments[0], arguments.data());
            _exit(127);
        }
        if (pid_ < 0) {
            throw std::runtime_error("cannot run " + command[0]);
        }
    }

    RunningCommand(const RunningCommand&) = delete;
    RunningCommand& operator=(const RunningCommand&) = delete;

    ~RunningCommand() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        close(terminal_);
    }

    /// Waits until the program has shown a text.
    ///
    /// @throws std::runtime_error with what it showed instead if it has ended, or seems to hang
    void waitFor(const std::string& text) {
        while (shown_.find(text) == std::string::npos) {
            if (!read()) {
                throw std::runtime_error("\"" + text + "\" was not shown, but: " + shown_);
            }
        }
    }

    /// Does something again and again until the program has shown a text.
    template <typename Action>
    void repeatUntil(const std::string& text, const Action& action) {
        constexpr int kPause = 50;  // milliseconds
        while (shown_.find(text) == std::string::npos) {
            action();
            pollfd waiting{terminal_, POLLIN, 0};
            if (poll(&waiting, 1, kPause) == 1 && !read()) {
                throw std::runtime_error("\"" + text + "\" was not shown, but: " + shown_);
            }
        }
    }

    void signal(int number) const { kill(pid_, number); }

    /// Ctrl-C, which the terminal turns into SIGINT for the program and its children.
    void typeInterrupt() const {
        if (write(terminal_, "\x03", 1) != 1) {
            throw std::runtime_error("cannot type");
        }
    }

    /// Waits for the end of the program.
    ///
    /// @return its status, and all that it has shown as `out`, lines ending in "\r\n"
    CommandOutcome finish() {
        while (read()) {
        }
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = 0;
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), shown_, ""};
    }

  private:
    /// By default a terminal discards what it has not shown yet when Ctrl-C is typed.
    static void keepOutputWhenInterrupted() {
        termios settings{};
        tcgetattr(STDIN_FILENO, &settings);
        settings.c_lflag |= NOFLSH;
        tcsetattr(STDIN_FILENO, TCSANOW, &settings);
    }

    /// @return false at the end, or if nothing comes for longer than any program should be silent
    bool read() {
        constexpr int kPatience = 300'000;  // milliseconds
        pollfd waiting{terminal_, POLLIN, 0};
        char bytes[4096];
        if (poll(&waiting, 1, kPatience) != 1) {
            return false;
        }
        const ssize_t count = ::read(terminal_, bytes, sizeof bytes);
        if (count <= 0) {
            return false;
        }
        shown_.append(bytes, static_cast<std::size_t>(count));
        return true;
    }

    pid_t pid_ = 0;
    int terminal_ = -1;
    std::string shown_;
};

}  // namespace ovik::test
