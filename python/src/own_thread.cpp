#include "python/src/own_thread.h"

#include <chrono>

namespace ovik::python {

void WaitingThread::run(const std::function<void()>& errand) {
    std::unique_lock lock(mutex_);
    errand_ = &errand;
    changed_.notify_all();
    changed_.wait(lock, [this] { return errand_ == nullptr; });
    if (failure_) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}

void WaitingThread::tellEnd() {
    const std::lock_guard lock(mutex_);
    is_ended_ = true;
    changed_.notify_all();
}

void WaitingThread::waitForEnd() {
    constexpr std::chrono::milliseconds kBetweenLooksAtSignals(20);
    {
        const pybind11::gil_scoped_release others_may_run;
        std::unique_lock lock(mutex_);
        while (!is_ended_) {
            changed_.wait_for(
                lock, kBetweenLooksAtSignals, [this] { return is_ended_ || errand_ != nullptr; });
            const std::function<void()>* const errand = errand_;
            lock.unlock();
            serve(errand);
            lock.lock();
        }
    }
    const bool is_taken =
        takes_interrupted_ && raised_ && raised_->matches(PyExc_KeyboardInterrupt);
    if (raised_ && !is_taken) {
        throw pybind11::error_already_set(*raised_);
    }
}

void WaitingThread::serve(const std::function<void()>* errand) {
    std::exception_ptr failure;
    {
        const pybind11::gil_scoped_acquire lock;
        lookAtSignals();
        try {
            // What was interrupted meanwhile calls nobody any more.
            if (errand != nullptr && !is_interrupted_) {
                (*errand)();
            }
        } catch (pybind11::error_already_set& error) {
            interrupt(std::move(error));
        } catch (...) {
            failure = std::current_exception();
        }
    }
    if (errand != nullptr) {
        const std::lock_guard lock(mutex_);
        failure_ = failure;
        errand_ = nullptr;
        changed_.notify_all();
    }
}

void WaitingThread::lookAtSignals() {
    if (PyErr_CheckSignals() != 0) {
        interrupt(pybind11::error_already_set());
    }
}

void WaitingThread::interrupt(pybind11::error_already_set raised) {
    if (!raised_) {
        raised_.emplace(std::move(raised));
    }
    is_interrupted_ = true;
}

}  // namespace ovik::python
