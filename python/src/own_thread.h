#pragma once

#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <utility>

#include <pybind11/pybind11.h>

namespace ovik::python {

/// Runs `job(is_interrupted)` in a thread of its own and waits for its end with the interpreter
/// lock released. A signal that raises an exception in Python, such as Ctrl-C, sets
/// `is_interrupted`; the job is to end soon, and its outcome is forgotten.
///
/// The thread is for OpenMP, whose settings and workers belong to the thread that begins a loop:
/// those of the calling thread stay as they are, and a process that was forked from one with
/// workers, which it does not inherit, does not wait for them.
///
/// @return what the job returns
/// @throws what the job throws
/// @throws pybind11::error_already_set for the exception of a signal
template <typename Job>
auto in_own_thread(const Job& job) {
    constexpr std::chrono::milliseconds kBetweenLooksAtSignals(20);
    std::atomic<bool> is_interrupted = false;
    std::optional<pybind11::error_already_set> raised;
    auto outcome =
        std::async(std::launch::async, [&] { return job(std::as_const(is_interrupted)); });
    {
        const pybind11::gil_scoped_release others_may_run;
        while (outcome.wait_for(kBetweenLooksAtSignals) != std::future_status::ready) {
            const pybind11::gil_scoped_acquire lock;
            if (PyErr_CheckSignals() != 0) {
                raised.emplace();
                is_interrupted = true;
            }
        }
    }
    if (raised) {
        throw *raised;
    }
    return outcome.get();
}

}  // namespace ovik::python
