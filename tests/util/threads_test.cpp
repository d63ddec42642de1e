#include "util/threads.h"

#include <omp.h>
#include <string>

#include <gtest/gtest.h>

#include "util/parallel.h"

#include "tests/support/threads.h"

namespace ovik {
namespace {

class SetThreadCount : public testing::Test {
  private:
    /// Gives back the number of threads at the end.
    test::ThreadCount before_{omp_get_max_threads()};
};

TEST_F(SetThreadCount, TakesTheThreadsRequested) {
    for (const int count : {1, 2, 3}) {
        EXPECT_EQ(set_thread_count(count), "");
        EXPECT_EQ(omp_get_max_threads(), count);
    }
}

TEST_F(SetThreadCount, LeavesTheChoiceToOpenMpForZero) {
    omp_set_num_threads(2);
    EXPECT_EQ(set_thread_count(0), "");
    EXPECT_EQ(omp_get_max_threads(), 2);
}

TEST_F(SetThreadCount, TakesFewerThanAreOfNoUse) {
    const int most = most_workers();
    EXPECT_EQ(set_thread_count(most), "");
    EXPECT_EQ(set_thread_count(most + 1),
              std::to_string(most + 1) +
                  " threads are more than are of use here: " + std::to_string(most) + " are taken");
    EXPECT_EQ(omp_get_max_threads(), most);
    EXPECT_NE(set_thread_count(1000000), "");
    EXPECT_EQ(omp_get_max_threads(), most);
}

TEST(DeniedThreads, AreNoneWhereAllAreGranted) {
    const test::ThreadCount threads(3);
    parallel_for_each(100, 1, [](std::size_t /*i*/) {});
    EXPECT_EQ(denied_threads_note(), "");
}

}  // namespace
}  // namespace ovik
