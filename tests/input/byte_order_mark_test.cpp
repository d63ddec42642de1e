#include "input/byte_order_mark.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(WithoutByteOrderMark, TakesOneMarkFromTheBegin) {
    EXPECT_EQ(without_byte_order_mark("\xef\xbb\xbfgene"), "gene");
    EXPECT_EQ(without_byte_order_mark("\xef\xbb\xbf\xef\xbb\xbf"), kByteOrderMark);
    EXPECT_EQ(without_byte_order_mark("gene\xef\xbb\xbf"), "gene\xef\xbb\xbf");
    EXPECT_EQ(without_byte_order_mark("\xef\xbb"), "\xef\xbb");
    EXPECT_EQ(without_byte_order_mark(""), "");
}

}  // namespace
}  // namespace ovik
