#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "util/stage.h"

namespace ovik {

/// Counts what several threads have done of a stage, and tells of it, one thread at a time.
class StageCount {
  public:
    /// Tells of the begin.
    ///
    /// @param on_stage  may be empty; has to outlive the count
    StageCount(const OnStage& on_stage, Stage stage, std::uint64_t total)
        : on_stage_(on_stage),
          stage_(stage),
          total_(total) {
        tell(on_stage, stage, 0, total);
    }

    /// Whether the listener has thrown: what is left of the work need not be done.
    [[nodiscard]] bool isStopped() const { return is_stopped_.load(std::memory_order_relaxed); }

    /// So many more are done. A thread that finds another one telling goes on, but the end is told.
    ///
    /// @throws what the listener throws
    void add(std::uint64_t count) {
        const std::uint64_t done = done_.fetch_add(count) + count;
        if (!on_stage_) {
            return;
        }
        std::unique_lock lock(mutex_, std::defer_lock);
        if (done == total_) {
            lock.lock();
        } else if (!lock.try_lock()) {
            return;
        }
        if (isStopped()) {
            return;
        }
        try {
            on_stage_(stage_, done_, total_);
        } catch (...) {
            is_stopped_ = true;
            throw;
        }
    }

  private:
    const OnStage& on_stage_;
    Stage stage_;
    std::uint64_t total_;
    std::atomic<std::uint64_t> done_ = 0;
    std::atomic<bool> is_stopped_ = false;
    std::mutex mutex_;
};

}  // namespace ovik
