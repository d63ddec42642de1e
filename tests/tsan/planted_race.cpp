#include <atomic>
#include <cstdio>
#include <omp.h>
#include <thread>

#include "util/parallel.h"

/// A race on purpose: shows that the sanitizer sees what happens between the threads of a loop.
int main() {
    omp_set_num_threads(2);
    int shared = 0;
    std::atomic<int> arrived = 0;
    ovik::parallel_for(2, 1, [&](std::size_t worker, ovik::IndexRange /*share*/) {
        // Neither thread does both shares.
        arrived.fetch_add(1, std::memory_order_relaxed);
        while (arrived.load(std::memory_order_relaxed) < 2) {
            std::this_thread::yield();
        }
        shared += static_cast<int>(worker) + 1;
    });
    std::printf("%d\n", shared);
}
