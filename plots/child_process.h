#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace ovik {

/// A program that runs beside this one. It reads nothing; what it says goes to a file. Ctrl-C does
/// not reach it: whether it is still wanted is for this program to say.
class ChildProcess {
  public:
    /// Starts a program, found along PATH. No shell is involved: arguments arrive as they are.
    ///
    /// @param command            program and arguments
    /// @param working_directory  where it runs
    /// @param messages           file for its standard output and error, made anew
    /// @throws std::system_error with the reason if it cannot be started
    /// @throws std::bad_alloc
    ChildProcess(std::vector<std::string> command,
                 const std::string& working_directory,
                 const std::string& messages);

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Kills and reaps a program that has not been waited for.
    ~ChildProcess();

    /// Waits for the end of the program and reaps it; one that goes on beyond the limit is killed.
    ///
    /// @return its exit status, or 128 and the number of the signal that ended it (0 if this
    /// process ignores the end of its children, SIGCHLD); nothing if the limit was reached
    std::optional<int> wait(std::chrono::milliseconds limit);

    /// Kills the program that was started last, if it still runs; for handlers of signals that end
    /// this one without its destructors.
    static void killLast() noexcept;

  private:
    pid_t pid_ = 0;
};

}  // namespace ovik
