#include "util/threads.h"

#include <cstdlib>
#include <omp.h>
#include <string>

#include <gtest/gtest.h>

#include "util/input_error.h"
#include "util/parallel.h"

#include "tests/support/threads.h"

namespace ovik {
namespace {

/// The variable of the environment for a scope.
class StackSize {
  public:
    explicit StackSize(const char* size) { setenv("OMP_STACKSIZE", size, 1); }

    StackSize(const StackSize&) = delete;
    StackSize& operator=(const StackSize&) = delete;

    ~StackSize() { unsetenv("OMP_STACKSIZE"); }
};

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

TEST_F(SetThreadCount, RefusesStacksThatAreTooSmall) {
    for (const std::string size : {"16k", "127", "131071B", "0.1m", " 16 K", "0.0001G"}) {
        const StackSize scope(size.c_str());
        omp_set_num_threads(2);
        try {
            set_thread_count(1);
            ADD_FAILURE() << size;
        } catch (const InputError& error) {
            EXPECT_EQ(error.what(),
                      "OMP_STACKSIZE=" + size +
                          " leaves threads too little stack\nUnset it, or set it to 128K or more.");
        }
        EXPECT_EQ(omp_get_max_threads(), 2);
    }
}

TEST_F(SetThreadCount, TakesStacksThatAreLargeEnoughOrNoSizes) {
    for (const char* const size : {"128", "128k", "131072b", "8M", "1G", "abc", "", "-1", "0"}) {
        const StackSize scope(size);
        EXPECT_EQ(set_thread_count(1), "") << size;
    }
}

}  // namespace
}  // namespace ovik
