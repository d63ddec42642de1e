#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "tools/stage_progress.h"

namespace ovik::tool {

/// Shows on the terminal of standard error, in one line that is rewritten, how far a run is. The
/// line is gone before anything else is printed, and at the end. Of the iterations, the bar on
/// standard output tells how far they are, where that is the same terminal: behind it stands how
/// long they may take.
///
/// Nothing is shown where standard error is no terminal, or one that cannot step back (`TERM` is
/// "dumb" or not set), or where the process is in its background. At most one object lives at a
/// time.
class ProgressDisplay {
  public:
    /// @param is_wanted  false: nothing is ever shown
    explicit ProgressDisplay(bool is_wanted,
                             StageProgress::Clock now = &std::chrono::steady_clock::now);

    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    ~ProgressDisplay();

    /// What takes how far a stage is while the object lives; empty if nothing is shown.
    [[nodiscard]] OnStage onStage();

  private:
    void run();
    void draw();
    void show(std::string_view line);
    void erase();
    static void clearPlace();
    static void releasePlace();

    /// The one that lives and draws.
    static ProgressDisplay* drawing_;

    StageProgress progress_;
    /// Whether the bar of the iterations stands on the same terminal.
    bool has_bar_ = false;
    /// Held while the line is drawn or erased, and while others print in its place.
    std::mutex mutex_;
    std::condition_variable end_;
    bool is_ending_ = false;
    /// What stands on the terminal, behind what was printed.
    std::string shown_;
    /// Draws; not joinable if nothing is shown.
    std::thread drawer_;
};

}  // namespace ovik::tool
