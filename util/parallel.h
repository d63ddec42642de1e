#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <omp.h>

#include "util/team.h"

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

/// Most workers that a loop gets, however many threads are asked for: more only stand in one
/// another's way.
inline int most_workers() {
    static const int most = std::min(4 * omp_get_num_procs(), 1024);
    return most;
}

/// How many workers a loop over `count` indices gets: the threads that OpenMP offers, at least one
/// and at most one per `grain` indices, never more than `most_workers`; one within another loop.
inline int worker_count(std::size_t count, std::size_t grain = 1) {
    if (Team::isAtWork() || omp_get_active_level() >= omp_get_max_active_levels()) {
        return 1;
    }
    const auto offered = static_cast<std::size_t>(std::min(omp_get_max_threads(), most_workers()));
    return static_cast<int>(std::max<std::size_t>(1, std::min(offered, count / grain)));
}

/// Runs `body(piece)` for every piece from 0 to `count` - 1, side by side by the team of the
/// calling thread: who is free takes the next.
///
/// @param workers  at most so many threads
/// @throws what a piece threw: one of the exceptions, after all pieces have ended
template <typename Body>
void parallel_pieces(std::size_t count, std::size_t workers, const Body& body) {
    std::atomic_flag has_failed;
    std::exception_ptr failure;
    const auto guarded = [&](std::size_t piece) {
        try {
            body(piece);
        } catch (...) {
            if (!has_failed.test_and_set()) {
                failure = std::current_exception();
            }
        }
    };
    using Guarded = decltype(guarded);
    Team::ofThisThread().run(
        count,
        workers,
        [](const void* loop, std::size_t piece) { (*static_cast<const Guarded*>(loop))(piece); },
        &guarded);
    if (failure) {
        std::rethrow_exception(failure);
    }
}

/// Runs `body(worker, range)` for contiguous shares of the indices 0 to `count` - 1, one per
/// worker.
///
/// @param grain  fewest indices for which another thread is worth its start
/// @throws what a worker threw: one of the exceptions, after all workers have ended
template <typename Body>
void parallel_for(std::size_t count, std::size_t grain, const Body& body) {
    const auto workers = static_cast<std::size_t>(worker_count(count, grain));
    if (workers == 1) {
        body(0, IndexRange{0, count});
        return;
    }
    parallel_pieces(workers, workers, [&](std::size_t worker) {
        body(worker, static_share(count, workers, worker));
    });
}

/// Runs `body(i)` for every i from 0 to `count` - 1, by contiguous shares: several for each worker,
/// so that one whose processor is taken away holds up no other for long.
///
/// @param grain  as `parallel_for` has it
template <typename Body>
void parallel_for_each(std::size_t count, std::size_t grain, const Body& body) {
    constexpr std::size_t kSharesOfWorker = 8;
    const auto workers = static_cast<std::size_t>(worker_count(count, grain));
    const std::size_t shares =
        workers == 1 ? 1 : std::min(kSharesOfWorker * workers, count / grain);
    const auto run_share = [&](std::size_t share) {
        const IndexRange range = static_share(count, shares, share);
        for (std::size_t i = range.begin; i < range.end; ++i) {
            body(i);
        }
    };
    if (workers == 1) {
        run_share(0);
    } else {
        parallel_pieces(shares, workers, run_share);
    }
}

/// The tasks 0 to `count` - 1, for workers who take one after the other: each from a contiguous
/// share of its own, so that it finds in its processor's cache what it left there in the loop
/// before, then from those of the others. For tasks that differ in length, and for cores that are
/// busy with other programs.
class SharedTasks {
  public:
    /// @param workers  at least 1
    SharedTasks(std::size_t count, std::size_t workers) : count_(std::min(workers, kMostShares)) {
        for (std::size_t i = 0; i < count_; ++i) {
            const IndexRange range = static_share(count, count_, i);
            shares_[i].next = range.begin;
            shares_[i].end = range.end;
        }
    }

    /// Runs `body(i)` with tasks that no other worker has taken, until none is left.
    template <typename Body>
    void take(std::size_t worker, const Body& body) {
        for (std::size_t turn = 0; turn < count_; ++turn) {
            Share& share = shares_[(worker + turn) % count_];
            for (std::size_t i = share.next++; i < share.end; i = share.next++) {
                body(i);
            }
        }
    }

  private:
    /// More workers share those of others.
    static constexpr std::size_t kMostShares = 16;

    /// On a cache line of its own.
    struct alignas(64) Share {
        std::atomic<std::size_t> next = 0;
        std::size_t end = 0;
    };

    std::size_t count_;
    Share shares_[kMostShares];
};

/// Runs the tasks `body(i, worker)` for every i from 0 to `count` - 1, by `SharedTasks`.
///
/// @param workers  as `worker_count` gives them; no more than `count` are used
template <typename Body>
void parallel_tasks(std::size_t count, int workers, const Body& body) {
    const std::size_t team = std::min(count, static_cast<std::size_t>(workers));
    SharedTasks tasks(count, std::max<std::size_t>(team, 1));
    parallel_for(team, 1, [&](std::size_t worker, IndexRange /*share*/) {
        tasks.take(worker, [&](std::size_t i) { body(i, worker); });
    });
}

}  // namespace ovik
