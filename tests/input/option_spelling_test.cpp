#include "input/option_spelling.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(PlainlySpelled, IsTheOptionAndItsValueIfItHasOne) {
    EXPECT_EQ(plainly_spelled("missing", "drop"), "missing drop");
    EXPECT_EQ(plainly_spelled("pca", ""), "pca");
}

}  // namespace
}  // namespace ovik
