#include "tools/interruption.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <string_view>
#include <unistd.h>

#include "plots/child_process.h"

namespace ovik::tool {

namespace {

/// Milliseconds. Some programs send a signal to a process and to its group at once: signals that
/// come together are one.
constexpr std::int64_t kTogether = 200;

// Signal handlers read and write these variables.
std::atomic<std::int64_t> first_time = 0;
std::atomic<int> first_signal = 0;
std::atomic<bool> has_results = false;
std::atomic<bool> has_kept_fits = false;
static_assert(std::atomic<std::int64_t>::is_always_lock_free &&
              std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

std::int64_t milliseconds_now() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

/// Writes a line to standard error; it may stand behind a progress bar, hence a line of its own.
void say(std::string_view line) {
    // Nothing is left to be done about an error.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
}

ExitStatus status_of(int signal) {
    return signal == SIGINT ? Interrupted : Terminated;
}

/// Ends the process without its destructors.
[[noreturn]] void stop(std::string_view line, int signal) {
    say(line);
    ChildProcess::killLast();
    _exit(status_of(signal));
}

/// Calls nothing that is not allowed in signal handlers.
void take_signal(int signal) {
    const int error_before = errno;
    if (!has_results) {
        stop("\novik-tsne: interrupted before the first iteration: no results are written\n",
             signal);
    }
    const std::int64_t now = milliseconds_now();
    std::int64_t first = 0;
    if (first_time.compare_exchange_strong(first, now)) {
        first_signal = signal;
        say(has_kept_fits
                ? "\novik-tsne: interrupted: the fits that have ended are kept, and the same "
                  "command "
                  "goes on with them (a second signal stops it at once)\n"
                : "\novik-tsne: interrupted: the results of what was reached are written, then the "
                  "run ends (a second signal stops it at once)\n");
    } else if (now - first >= kTogether) {
        stop(has_kept_fits
                 ? "\novik-tsne: interrupted again: stopped at once; the fits that have ended are "
                   "kept\n"
                 : "\novik-tsne: interrupted again: stopped at once, before all results were "
                   "written\n",
             signal);
    }
    errno = error_before;
}

}  // namespace

void watch_for_interruption() {
    struct sigaction action {};

    action.sa_handler = take_signal;
    // Calls that were interrupted go on.
    action.sa_flags = SA_RESTART;
    sigaddset(&action.sa_mask, SIGINT);
    sigaddset(&action.sa_mask, SIGTERM);
    for (const int signal : {SIGINT, SIGTERM}) {
        struct sigaction before {};

        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
}

void promise_kept_fits() {
    has_kept_fits = true;
    has_results = true;
}

bool goes_on() {
    has_results = true;
    return first_signal == 0;
}

ExitStatus interruption_status() {
    const int signal = first_signal;
    return signal == 0 ? Success : status_of(signal);
}

}  // namespace ovik::tool
