#include <atomic>
#include <cstdio>
#include <thread>

#include "util/team.h"

/// A race on purpose: shows that the sanitizer sees what happens between the threads of a team.

namespace {

struct Race {
    std::atomic<int> arrived = 0;
    int shared = 0;
};

void race(const void* loop, std::size_t piece) {
    Race& race = **static_cast<Race* const*>(loop);
    // Neither thread does both pieces.
    race.arrived.fetch_add(1, std::memory_order_relaxed);
    while (race.arrived.load(std::memory_order_relaxed) < 2) {
        std::this_thread::yield();
    }
    race.shared += static_cast<int>(piece) + 1;
}

}  // namespace

int main() {
    Race shared;
    Race* const loop = &shared;
    ovik::Team(2).run(2, 2, &race, &loop);
    std::printf("%d\n", shared.shared);
}
