#include "stats/side_by_side.h"

#include <atomic>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/threads.h"

namespace ovik {
namespace {

TEST(RunSideBySide, DoesEachPieceOnce) {
    for (const int threads : {1, 2, 5}) {
        const test::ThreadCount scope(threads);
        for (const std::size_t at_once : {0U, 1U, 2U, 7U}) {
            for (const std::size_t count : {0U, 1U, 2U, 5U}) {
                std::vector<std::atomic<int>> done(count);
                run_side_by_side(count, at_once, [&](std::size_t i) { ++done[i]; });
                for (const std::atomic<int>& times : done) {
                    EXPECT_EQ(times, 1);
                }
            }
        }
    }
}

TEST(RunSideBySide, ThrowsWhatAPieceThrew) {
    EXPECT_THROW(run_side_by_side(4, 0, [](std::size_t) { throw std::runtime_error("no"); }),
                 std::runtime_error);
}

}  // namespace
}  // namespace ovik
