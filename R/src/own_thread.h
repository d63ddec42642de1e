#pragma once

#include <atomic>
#include <chrono>
#include <future>
#include <signal.h>
#include <utility>

namespace ovik::r {

/// Leaves the signals of the process to other threads than this one and those that it starts:
/// R is not to be interrupted in a thread that it does not know.
inline void leave_signals_to_others() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

/// Runs `job(is_interrupted)` in a thread of its own, in which nothing of R may be called, and
/// calls `meanwhile()` every now and then in the calling thread until it has ended. An exception of
/// `meanwhile` sets `is_interrupted`; the job is to end soon, and its outcome is forgotten.
///
/// The thread is for the settings of OpenMP, which belong to the thread that begins a loop: those
/// of the calling thread stay as they are.
///
/// @return what the job returns
/// @throws what the job throws, or `meanwhile`
template <typename Job, typename Meanwhile>
auto in_own_thread(const Job& job, const Meanwhile& meanwhile) {
    constexpr std::chrono::milliseconds kBetweenLooks(20);
    std::atomic<bool> is_interrupted = false;
    auto outcome = std::async(std::launch::async, [&] {
        leave_signals_to_others();
        return job(std::as_const(is_interrupted));
    });
    try {
        while (outcome.wait_for(kBetweenLooks) != std::future_status::ready) {
            meanwhile();
        }
        meanwhile();
    } catch (...) {
        is_interrupted = true;
        outcome.wait();
        throw;
    }
    return outcome.get();
}

}  // namespace ovik::r
