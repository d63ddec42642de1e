#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>

#include "neighbours/on_progress.h"

namespace ovik {

/// Counts the steps of a search that several threads make, and tells of them.
class SearchProgress {
  public:
    /// @param on_progress  may be empty; has to outlive the object
    SearchProgress(const OnProgress& on_progress, std::size_t total)
        : on_progress_(on_progress),
          total_(total) {}

    /// Whether the search has been ended: what is left of it need not be done.
    [[nodiscard]] bool isStopped() const { return is_stopped_.load(std::memory_order_relaxed); }

    /// Counts some steps. A thread that finds another one telling goes on.
    /// @throws what the function throws
    void add(std::size_t steps) {
        done_ += steps;
        if (!on_progress_) {
            return;
        }
        const std::unique_lock lock(mutex_, std::try_to_lock);
        if (!lock.owns_lock() || isStopped()) {
            return;
        }
        try {
            on_progress_(done_, total_);
        } catch (...) {
            is_stopped_ = true;
            throw;
        }
    }

  private:
    const OnProgress& on_progress_;
    std::size_t total_;
    std::atomic<std::size_t> done_ = 0;
    std::atomic<bool> is_stopped_ = false;
    std::mutex mutex_;
};

}  // namespace ovik
