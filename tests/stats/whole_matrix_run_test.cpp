#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/plain/plain_tsne.h"
#include "tests/support/engine_run.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr const char* kMatrix = OVIK_DATA_DIR "/eisen1998_timecourses.tsv";

#ifdef OVIK_SANITIZED
// Sanitizers look at what is touched, which is the same in every iteration.
constexpr int kLastIteration = 10;
#else
constexpr int kLastIteration = 1000;
#endif

/// The exact method on all 2467 genes of the time courses.
TEST(WholeMatrixRun, EqualsThePlainProgramBitForBitForAnyNumberOfThreads) {
    const std::vector<double> expected = plain::embed_exactly(
        plain::read_tab_separated(kMatrix, 1000000), 2, 30.0, {kLastIteration, 250, 250}, nullptr);
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const test::RunOutcome run = test::run_engine(
            kMatrix, {.perplexity = 30.0, .theta = 0.0, .max_iter = kLastIteration});
        ASSERT_EQ(run.Y.size(), 2U * 2467);
        EXPECT_EQ(run.Y, expected) << threads << " threads";
    }
}

}  // namespace
}  // namespace ovik
