#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

#include "util/stage.h"

namespace ovik::tool {

/// How far the stage at hand is, and in words how long it may still take.
class StageProgress {
  public:
    using Time = std::chrono::steady_clock::time_point;
    using Clock = std::function<Time()>;

    /// How long a stage takes before anything is said of it.
    static constexpr std::chrono::milliseconds kQuiet{1500};

    explicit StageProgress(Clock now = &std::chrono::steady_clock::now);

    /// Takes how far a stage is: an `OnStage`.
    void at(Stage stage, std::uint64_t done, std::uint64_t total);

    /// The stage at hand; meaningless before the first.
    [[nodiscard]] Stage stage() const { return stage_.load(std::memory_order_relaxed); }

    /// What there is to say, in one line of printable ASCII: "Neighbours: 45 % of 1000000 rows,
    /// about 2 min left". Empty while there is nothing: before the first stage, in the first
    /// moments of one, and at its end.
    ///
    /// @param room  the most characters; the line is made shorter, or is empty if that does not do
    [[nodiscard]] std::string line(std::size_t room) const;

    /// The end of it alone: "about 2 min left"; empty where the time is not known.
    [[nodiscard]] std::string timeLeft() const;

  private:
    /// What is known at some moment.
    struct State {
        Stage stage;
        std::uint64_t done;
        std::uint64_t total;
        /// Since the stage began; negative before the first.
        double seconds;
        /// Negative if that cannot be told.
        double seconds_left;
    };

    [[nodiscard]] State state() const;

    Clock now_;
    /// Held while a stage begins, and while it is looked at.
    mutable std::mutex mutex_;
    std::atomic<bool> has_begun_ = false;
    std::atomic<Stage> stage_ = Stage::Reading;
    std::atomic<std::uint64_t> done_ = 0;
    std::atomic<std::uint64_t> total_ = 0;
    Time start_{};
    /// How much was done when the stage began, as in a run that goes on from a checkpoint.
    std::uint64_t first_ = 0;
};

/// "42 s", "12 min", "3 h 20 min"; at most two digits more than a person reads off.
std::string duration_text(double seconds);

}  // namespace ovik::tool
