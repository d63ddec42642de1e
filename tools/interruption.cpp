#include "tools/interruption.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <unistd.h>

#include "plots/child_process.h"

namespace ovik::tool {

namespace {

// Read and written by signal handlers.
std::atomic<int> first_signal = 0;
std::atomic<bool> has_results = false;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

/// Writes a line to standard error; it may stand behind a progress bar, hence a line of its own.
void say(std::string_view line) {
    // Nothing is left to be done about an error.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
}

ExitStatus status_of(int signal) {
    return signal == SIGINT ? Interrupted : Terminated;
}

/// Only calls that are allowed in signal handlers.
void take_signal(int signal) {
    const int error_before = errno;
    if (!has_results) {
        say("\novik-tsne: interrupted before the first iteration: no results are written\n");
        _exit(status_of(signal));
    }
    int none = 0;
    if (!first_signal.compare_exchange_strong(none, signal)) {
        say("\novik-tsne: interrupted again: stopped at once, earlier files are as they were\n");
        ChildProcess::killLast();
        _exit(status_of(signal));
    }
    say("\novik-tsne: interrupted: the results of what was reached are written, then the run ends "
        "(a second signal stops it at once)\n");
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

bool goes_on() {
    has_results = true;
    return first_signal == 0;
}

ExitStatus interruption_status() {
    const int signal = first_signal;
    return signal == 0 ? Success : status_of(signal);
}

}  // namespace ovik::tool
