#include "util/parallel.h"

#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/support/random_points.h"
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

TEST(OrderedSum, EqualsThePlainLoopBitForBit) {
    constexpr std::size_t kBlocks = 333;
    constexpr std::size_t kTerms = 100;
    std::vector<double> values = test::random_values(kBlocks * kTerms, 5, 1e3);
    for (std::size_t i = 0; i < values.size(); i += 7) {
        values[i] *= 1e-12;
    }
    double expected = 0.25;
    for (std::size_t block = 0; block < kBlocks; ++block) {
        for (std::size_t i = 0; i < block % kTerms; ++i) {
            expected += values[block * kTerms + i];
        }
    }
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const double sum =
            ordered_sum(0.25, kBlocks, kTerms, [&](std::size_t block, double* terms) {
                std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(block * kTerms),
                            block % kTerms,
                            terms);
                return block % kTerms;
            });
        EXPECT_EQ(sum, expected);
    }
}

TEST(OrderedSum, IsTheStartWithoutBlocks) {
    EXPECT_EQ(ordered_sum(1.5, 0, 10, [](std::size_t, double*) { return std::size_t{0}; }), 1.5);
}

}  // namespace
}  // namespace ovik
