#include "results/row_fields.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(RowFields, AreShortestNumbersBehindTabs) {
    const std::vector<RowNumbers> columns = {{"a", "A", {0.1, 1e-7}},
                                             {"b", "B", {std::nan(""), 2.0}}};
    EXPECT_EQ(header_fields(columns), "\ta\tb");
    EXPECT_EQ(row_fields(columns, 0), "\t0.1\t");
    EXPECT_EQ(row_fields(columns, 1), "\t1e-07\t2");
    EXPECT_EQ(row_fields({}, 0), "");
    EXPECT_EQ(number_field(std::nan("")), "\t");
}

}  // namespace
}  // namespace ovik
