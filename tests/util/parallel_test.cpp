#include "util/parallel.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/support/threads.h"

namespace ovik {
namespace {

RC_GTEST_PROP(StaticShare, CoversTheRangeInContiguousNearlyEqualParts, ()) {
    const auto count = *rc::gen::inRange<std::size_t>(0, 10000);
    const auto workers = *rc::gen::inRange<std::size_t>(1, 100);
    std::size_t next = 0;
    for (std::size_t worker = 0; worker < workers; ++worker) {
        const IndexRange share = static_share(count, workers, worker);
        RC_ASSERT(share.begin == next);
        const std::size_t size = share.end - share.begin;
        RC_ASSERT(size == count / workers + (worker < count % workers ? 1 : 0));
        next = share.end;
    }
    RC_ASSERT(next == count);
}

TEST(WorkerCount, IsAtLeastOneAndBoundedByTheWork) {
    const test::ThreadCount threads(4);
    EXPECT_EQ(worker_count(0), 1);
    EXPECT_EQ(worker_count(3), 3);
    EXPECT_EQ(worker_count(100, 50), 2);
    EXPECT_EQ(worker_count(49, 50), 1);
}

TEST(WorkerCount, IsCappedForAbsurdRequests) {
    const test::ThreadCount threads(100000);
    EXPECT_LE(worker_count(1000000), 1024);
}

TEST(ParallelForEach, VisitsEveryIndexOnce) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        std::vector<int> visits(1001, 0);
        parallel_for_each(visits.size(), 1, [&](std::size_t i) { visits[i] += 1; });
        EXPECT_EQ(visits, std::vector<int>(1001, 1));
    }
}

TEST(ParallelFor, GivesEachWorkerItsShare) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const auto workers = static_cast<std::size_t>(worker_count(1000, 1));
        std::vector<IndexRange> shares(workers);
        parallel_for(
            1000, 1, [&](std::size_t worker, IndexRange share) { shares[worker] = share; });
        for (std::size_t worker = 0; worker < workers; ++worker) {
            const IndexRange expected = static_share(1000, workers, worker);
            EXPECT_EQ(shares[worker].begin, expected.begin);
            EXPECT_EQ(shares[worker].end, expected.end);
        }
    }
}

TEST(ParallelFor, HasOneWorkerWithinALoop) {
    const test::ThreadCount scope(4);
    std::vector<int> workers(4, 0);
    parallel_for(4, 1, [&](std::size_t worker, IndexRange /*share*/) {
        workers[worker] = worker_count(1000);
        parallel_for(1000, 1, [&](std::size_t inner, IndexRange share) {
            workers[worker] += inner == 0 && share.size() == 1000 ? 1 : 0;
        });
    });
    EXPECT_EQ(workers, std::vector<int>(4, 2));
}

TEST(ParallelFor, HasOneWorkerWithinALoopOfOpenMp) {
    const test::ThreadCount scope(4);
    int workers = 0;
#pragma omp parallel num_threads(2)
    {
#pragma omp single
        workers = worker_count(1000);
    }
    EXPECT_EQ(workers, 1);
}

TEST(ParallelTasks, AreDoneOnceByAsManyWorkers) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        std::vector<int> visits(1001, 0);
        std::vector<int> of_workers(3, 0);
        parallel_tasks(visits.size(), std::min(threads, 3), [&](std::size_t i, std::size_t worker) {
            visits[i] += 1;
            of_workers.at(worker) += 1;
        });
        EXPECT_EQ(visits, std::vector<int>(1001, 1));
        EXPECT_EQ(std::accumulate(of_workers.begin(), of_workers.end(), 0), 1001);
    }
}

TEST(SharedTasks, AreTakenFromTheOwnShareFirst) {
    SharedTasks tasks(10, 3);
    std::vector<std::size_t> taken;
    const auto take = [&](std::size_t i) { taken.push_back(i); };
    tasks.take(1, take);
    // Shares of 4, 3 and 3 tasks.
    EXPECT_EQ(taken, (std::vector<std::size_t>{4, 5, 6, 7, 8, 9, 0, 1, 2, 3}));
    tasks.take(0, take);
    EXPECT_EQ(taken.size(), 10U);
}

TEST(SharedTasks, MayBeFewerThanWorkersAndTheSharesToo) {
    for (const std::size_t count : {0U, 1U, 5U, 100U}) {
        SharedTasks tasks(count, 40);
        std::vector<int> visits(count, 0);
        for (std::size_t worker = 40; worker-- > 0;) {
            tasks.take(worker, [&](std::size_t i) { visits[i] += 1; });
        }
        EXPECT_EQ(visits, std::vector<int>(count, 1));
    }
}

TEST(ParallelFor, HandsAnExceptionToTheCaller) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        EXPECT_THROW(parallel_for_each(100,
                                       1,
                                       [](std::size_t i) {
                                           if (i == 57) {
                                               throw std::runtime_error("worker");
                                           }
                                       }),
                     std::runtime_error);
    }
}

}  // namespace
}  // namespace ovik
