#pragma once

#include <omp.h>

namespace ovik::test {

/// The numbers of threads for which results are to be the same.
constexpr int kThreadCounts[] = {1, 2, 3, 8};

/// Sets the number of OpenMP threads for a scope.
class ThreadCount {
  public:
    explicit ThreadCount(int threads) : before_(omp_get_max_threads()) {
        omp_set_num_threads(threads);
    }

    ThreadCount(const ThreadCount&) = delete;
    ThreadCount& operator=(const ThreadCount&) = delete;

    ~ThreadCount() { omp_set_num_threads(before_); }

  private:
    int before_;
};

}  // namespace ovik::test
