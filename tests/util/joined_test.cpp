#include "util/joined.h"

#include <gtest/gtest.h>

namespace {

using ovik::first_few;
using ovik::joined;

TEST(Joined, HasSomethingBetweenEachTwo) {
    EXPECT_EQ(joined({}), "");
    EXPECT_EQ(joined({"a"}), "a");
    EXPECT_EQ(joined({"a", "b", "c"}), "a, b, c");
    EXPECT_EQ(joined({"a", "b"}, " or "), "a or b");
    EXPECT_EQ(joined({"", "", "c"}, "\t"), "\t\tc");
}

TEST(FirstFew, HasDotsWhereThereAreMore) {
    EXPECT_EQ(first_few({}, 2), "");
    EXPECT_EQ(first_few({"a", "b"}, 2), "a, b");
    EXPECT_EQ(first_few({"a", "b", "c"}, 2), "a, b, ...");
    EXPECT_EQ(first_few({"a", "b"}, 3, 2), "a, b");
    EXPECT_EQ(first_few({"a", "b"}, 3, 7), "a, b, ...");
}

}  // namespace
