#include "tools/progress_display.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string_view>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "util/console.h"
#include "util/write_all.h"

namespace ovik::tool {

namespace {

constexpr std::chrono::milliseconds kPause{200};
constexpr std::size_t kLongest = 120;

bool can_be_rewritten() {
    const char* const name = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): at the start
    return isatty(STDERR_FILENO) == 1 && name != nullptr && std::string_view(name) != "dumb" &&
           *name != '\0';
}

/// Whether both are one terminal, as far as their names tell.
bool are_one_terminal() {
    char of_output[256] = "";
    char of_errors[256] = "";
    return ttyname_r(STDOUT_FILENO, of_output, sizeof of_output) == 0 &&
           ttyname_r(STDERR_FILENO, of_errors, sizeof of_errors) == 0 &&
           std::string_view(of_output) == of_errors;
}

/// A process in the background would be stopped, or write into what another one shows.
bool is_in_background() {
    const pid_t in_front = tcgetpgrp(STDERR_FILENO);
    return in_front >= 0 && in_front != getpgrp();
}

void write_times(char byte, std::size_t count) {
    char bytes[kLongest];
    std::fill_n(bytes, count, byte);
    // Nothing is left to be done about an error.
    [[maybe_unused]] const bool is_written = write_all(STDERR_FILENO, {bytes, count});
}

std::size_t terminal_width() {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

}  // namespace

ProgressDisplay* ProgressDisplay::drawing_ = nullptr;

void ProgressDisplay::clearPlace() {
    drawing_->mutex_.lock();
    drawing_->erase();
}

void ProgressDisplay::releasePlace() {
    drawing_->mutex_.unlock();
}

ProgressDisplay::ProgressDisplay(bool is_wanted, StageProgress::Clock now)
    : progress_(std::move(now)) {
    if (!is_wanted || !can_be_rewritten()) {
        return;
    }
    has_bar_ = are_one_terminal();
    shown_.reserve(kLongest);
    // Signals are for the thread that computes.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        drawer_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        // Without a thread to spare, nothing is shown.
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (drawer_.joinable()) {
        static constexpr PlaceOwner kOwner{&clearPlace, &releasePlace};
        drawing_ = this;
        place_owner = &kOwner;
    }
}

ProgressDisplay::~ProgressDisplay() {
    if (!drawer_.joinable()) {
        return;
    }
    place_owner = nullptr;
    {
        const std::lock_guard lock(mutex_);
        is_ending_ = true;
        erase();
    }
    end_.notify_one();
    drawer_.join();
}

OnStage ProgressDisplay::onStage() {
    if (!drawer_.joinable()) {
        return {};
    }
    return [this](Stage stage, std::uint64_t done, std::uint64_t total) {
        progress_.at(stage, done, total);
    };
}

void ProgressDisplay::run() {
    std::unique_lock lock(mutex_);
    while (!end_.wait_for(lock, kPause, [this] { return is_ending_; })) {
        try {
            draw();
        } catch (const std::bad_alloc&) {
            // The run needs the memory more.
        }
    }
}

void ProgressDisplay::draw() {
    // The last column stays free: some terminals go to the next line there.
    const std::size_t in_use = has_bar_ ? columns_in_use.load() : 0;
    const std::size_t width = terminal_width();
    const std::size_t room = width > in_use + 1 ? std::min(width - in_use - 1, kLongest) : 0;
    std::string line;
    if (in_use > 0) {
        line = progress_.timeLeft();
        line.resize(line.size() <= room ? line.size() : 0);
    } else if (!has_bar_ || progress_.stage() != Stage::Iterations) {
        line = progress_.line(room);
    }
    if (line != shown_ && !is_in_background()) {
        show(line);
    }
}

/// Writes a line over the one that stands there, without a control sequence and without memory.
void ProgressDisplay::show(std::string_view line) {
    const std::size_t rest = shown_.size() - std::min(shown_.size(), line.size());
    write_times('\b', shown_.size());
    [[maybe_unused]] const bool is_written = write_all(STDERR_FILENO, line);
    write_times(' ', rest);
    write_times('\b', rest);
    shown_ = line;
}

void ProgressDisplay::erase() {
    if (!shown_.empty()) {
        show("");
    }
}

}  // namespace ovik::tool
