#include "util/work_memory_error.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(WorkMemoryError, SaysWhatIsWrong) {
    EXPECT_STREQ(WorkMemoryError().what(),
                 "a work array does not fit in memory: fewer rows, fewer columns, a lower "
                 "perplexity or a theta above 0 take less");
}

}  // namespace
}  // namespace ovik
