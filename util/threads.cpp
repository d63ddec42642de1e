#include "util/threads.h"

#include <algorithm>
#include <cctype>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <omp.h>
#include <system_error>
#include <thread>
#include <vector>

#include "util/counted.h"
#include "util/input_error.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// How many threads the system lets this process have at a time, up to `wanted`. The OpenMP runtime
/// would end the process at the first one that it does not get.
int threads_granted(int wanted) {
    std::mutex mutex;
    std::condition_variable all_started;
    bool may_end = false;
    const auto wait_for_end = [&] {
        std::unique_lock lock(mutex);
        all_started.wait(lock, [&] { return may_end; });
    };
    std::vector<std::thread> threads;
    try {
        // The calling thread works too.
        while (static_cast<int>(threads.size()) + 1 < wanted) {
            threads.emplace_back(wait_for_end);
        }
    } catch (const std::system_error&) {
        // The threads that have started are all that the system grants.
    }
    {
        const std::lock_guard lock(mutex);
        may_end = true;
    }
    all_started.notify_all();
    for (std::thread& thread : threads) {
        thread.join();
    }
    return static_cast<int>(threads.size()) + 1;
}

/// Bytes of a size as in OMP_STACKSIZE: a number and B, K, M or G, kilobytes without; 0 if it is
/// none, which the OpenMP runtime ignores.
double stack_bytes(const char* text) {
    char* unit = nullptr;
    const double number = std::strtod(text, &unit);
    while (std::isspace(static_cast<unsigned char>(*unit)) != 0) {
        ++unit;
    }
    switch (std::tolower(static_cast<unsigned char>(*unit))) {
        case 'b':
            return number;
        case 'm':
            return number * 1048576.0;
        case 'g':
            return number * 1073741824.0;
        default:
            return number * 1024.0;
    }
}

void check_stack_size() {
    // Several times what any loop was seen to need.
    constexpr double kLeast = 131072.0;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
    const char* const size = std::getenv("OMP_STACKSIZE");
    if (size != nullptr && stack_bytes(size) > 0.0 && stack_bytes(size) < kLeast) {
        throw InputError(std::string("OMP_STACKSIZE=") + size +
                         " leaves threads too little stack\nUnset it, or set it to 128K or more.");
    }
}

}  // namespace

std::string set_thread_count(int requested) {
    check_stack_size();
    const int wanted = requested > 0 ? requested : omp_get_max_threads();
    const int used = std::min(wanted, most_workers());
    const int granted = threads_granted(used);
    omp_set_num_threads(granted);
    if (granted < used) {
        return "the system grants this process " +
               counted(static_cast<std::size_t>(granted), "thread", "threads") + " instead of " +
               std::to_string(used) + ": the run takes longer";
    }
    if (used < wanted) {
        return std::to_string(wanted) +
               " threads are more than are of use here: " + std::to_string(used) + " are taken";
    }
    return "";
}

}  // namespace ovik
