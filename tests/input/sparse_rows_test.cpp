#include "input/sparse_rows.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(SparseRows, CountTheirEntriesAndBytes) {
    EXPECT_EQ(SparseRows{}.entries(), 0U);
    const SparseRows rows{2, 5, {0, 2, 3}, {1, 4, 0}, {0.5, 0.0, 2.0}};
    EXPECT_EQ(rows.entries(), 3U);
    EXPECT_EQ(
        sparse_bytes(2.0, 3.0),
        2.0 * sizeof(rows.starts[0]) + 3.0 * (sizeof(rows.column_of[0]) + sizeof(rows.values[0])));
}

}  // namespace
}  // namespace ovik
