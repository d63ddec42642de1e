#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <omp.h>

/// The parallel loops of the toolkit. Results never depend on the number of threads: workers write
/// disjoint elements, and sums are formed in index order.

namespace ovik {

/// A half-open range of indices.
struct IndexRange {
    std::size_t begin;
    std::size_t end;

    [[nodiscard]] std::size_t size() const { return end - begin; }
};

/// The contiguous share of one worker: with q = count / workers and r = count mod workers, the
/// first r workers take q + 1 indices each, the others q.
inline IndexRange static_share(std::size_t count, std::size_t workers, std::size_t worker) {
    const std::size_t quotient = count / workers;
    const std::size_t remainder = count % workers;
    const std::size_t begin = worker * quotient + std::min(worker, remainder);
    return {begin, begin + quotient + (worker < remainder ? 1 : 0)};
}

/// Most workers that a loop gets, however many threads OpenMP offers: the runtime does not survive
/// a request for far more threads than there are processors.
inline int most_workers() {
    return std::min(4 * omp_get_num_procs(), 1024);
}

/// How many workers a loop over `count` indices gets: the threads that OpenMP offers, at least one
/// and at most one per `grain` indices, never more than `most_workers`.
inline int worker_count(std::size_t count, std::size_t grain = 1) {
    const auto offered = static_cast<std::size_t>(std::min(omp_get_max_threads(), most_workers()));
    return static_cast<int>(std::max<std::size_t>(1, std::min(offered, count / grain)));
}

/// Runs `body(worker, range)` for contiguous shares of the indices 0 to `count` - 1, one per
/// worker.
///
/// @param grain  fewest indices for which another thread is worth its start
/// @throws what a worker threw: one of the exceptions, after all workers have ended
template <typename Body>
void parallel_for(std::size_t count, std::size_t grain, const Body& body) {
    const int workers = worker_count(count, grain);
    if (workers == 1) {
        body(0, IndexRange{0, count});
        return;
    }
    std::exception_ptr failure;
#pragma omp parallel num_threads(workers) default(none) shared(count, body, failure)
    {
        const auto worker = static_cast<std::size_t>(omp_get_thread_num());
        const auto team = static_cast<std::size_t>(omp_get_num_threads());
        // An exception that leaves an OpenMP region ends the process.
        try {
            body(worker, static_share(count, team, worker));
        } catch (...) {
#pragma omp critical(ovik_parallel_for_failure)
            failure = std::current_exception();
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

/// Runs `body(i)` for every i from 0 to `count` - 1, by the contiguous shares of `parallel_for`.
template <typename Body>
void parallel_for_each(std::size_t count, std::size_t grain, const Body& body) {
    parallel_for(count, grain, [&body](std::size_t /*worker*/, IndexRange range) {
        for (std::size_t i = range.begin; i < range.end; ++i) {
            body(i);
        }
    });
}

/// Runs the tasks `body(i, worker)` for every i from 0 to `count` - 1 by a dynamic schedule: a
/// worker that is free takes the next task. For tasks that differ in length, and for cores that are
/// busy with other programs.
///
/// @param workers  as `worker_count` gives them; no more than `count` are used
template <typename Body>
void parallel_tasks(std::size_t count, int workers, const Body& body) {
    std::atomic<std::size_t> next{0};
    const std::size_t team = std::min(count, static_cast<std::size_t>(workers));
    parallel_for(team, 1, [&](std::size_t worker, IndexRange /*share*/) {
        for (std::size_t i = next.fetch_add(1); i < count; i = next.fetch_add(1)) {
            body(i, worker);
        }
    });
}

}  // namespace ovik
