#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ovik::r {

/// Lines on their way from the thread of a fit, which may not call R, to the one that may.
class ToldLines {
  public:
    void add(std::string line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(std::move(line));
    }

    /// The lines since the last call.
    std::vector<std::string> take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

  private:
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

}  // namespace ovik::r
