#pragma once

#include <atomic>
#include <condition_variable>
#include <exception>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <utility>

#include <pybind11/pybind11.h>

namespace ovik::python {

/// The thread that waits, with the interpreter lock released, for a job in another one, and does
/// for it what needs the interpreter.
///
/// A signal that raises an exception in Python, such as Ctrl-C, sets `isInterrupted`; the job is to
/// end soon.
class WaitingThread {
  public:
    /// @param takes_interrupted  whether the outcome of a job that Ctrl-C has ended is of use: then
    ///                           KeyboardInterrupt is not raised
    explicit WaitingThread(bool takes_interrupted = false)
        : takes_interrupted_(takes_interrupted) {}

    [[nodiscard]] const std::atomic<bool>& isInterrupted() const { return is_interrupted_; }

    /// For the job: has the waiting thread run an errand with the interpreter lock, and comes back
    /// when it is done. An exception of Python interrupts the job as that of a signal does; others
    /// are thrown here.
    void run(const std::function<void()>& errand);

    /// Waits until `tellEnd`; called with the interpreter lock.
    ///
    /// @throws pybind11::error_already_set for the exception of a signal or of an errand
    void waitForEnd();

    /// For the job, when it has ended.
    void tellEnd();

  private:
    void serve(const std::function<void()>* errand);
    void lookAtSignals();
    void interrupt(pybind11::error_already_set raised);

    const bool takes_interrupted_;
    std::atomic<bool> is_interrupted_ = false;
    std::optional<pybind11::error_already_set> raised_;

    /// Of what both threads share.
    std::mutex mutex_;
    std::condition_variable changed_;
    bool is_ended_ = false;
    const std::function<void()>* errand_ = nullptr;
    std::exception_ptr failure_;
};

/// Runs `job(is_interrupted)` in a thread of its own and waits for its end with the interpreter
/// lock released.
///
/// The thread is for the settings of OpenMP, which belong to the thread that begins a loop: those
/// of the calling thread stay as they are.
///
/// @return what the job returns
/// @throws what the job throws
/// @throws pybind11::error_already_set for the exception of a signal or of an errand
template <typename Job>
auto in_own_thread(const Job& job, WaitingThread& waiting) {
    struct End {
        WaitingThread& waiting;

        ~End() { waiting.tellEnd(); }
    };

    auto outcome = std::async(std::launch::async, [&] {
        const End end{waiting};
        return job(waiting.isInterrupted());
    });
    waiting.waitForEnd();
    return outcome.get();
}

/// The same for a job without errands.
template <typename Job>
auto in_own_thread(const Job& job) {
    WaitingThread waiting;
    return in_own_thread(job, waiting);
}

}  // namespace ovik::python
