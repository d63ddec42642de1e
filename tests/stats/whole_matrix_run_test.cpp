#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/plain/plain_tsne.h"
#include "tests/support/engine_run.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr const char* kMatrix = OVIK_DATA_DIR "/eisen1998_timecourses.tsv";

const std::vector<double>& plain_embedding() {
    static const std::vector<double> embedding = plain::embed_exactly(
        plain::read_tab_separated(kMatrix, 1000000), 2, 30.0, {1000, 250, 250}, nullptr);
    return embedding;
}

/// The exact method on all 2467 genes of the time courses, 1000 iterations.
TEST(WholeMatrixRun, EqualsThePlainProgramBitForBitForAnyNumberOfThreads) {
    for (const int threads : test::kThreadCounts) {
        const test::ThreadCount scope(threads);
        const test::RunOutcome run = test::run_engine(kMatrix, {.perplexity = 30.0, .theta = 0.0});
        ASSERT_EQ(run.Y.size(), 2U * 2467);
        EXPECT_EQ(run.Y, plain_embedding()) << threads << " threads";
    }
}

}  // namespace
}  // namespace ovik
