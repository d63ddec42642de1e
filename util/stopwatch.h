#pragma once

#include <chrono>

namespace ovik {

/// Measures by the clock on the wall how long one stage after another takes.
class Stopwatch {
  public:
    /// Seconds since the last call, or since the start.
    double lap() {
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double> elapsed = now - last_;
        last_ = now;
        return elapsed.count();
    }

  private:
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

}  // namespace ovik
