#include "stats/add_transpose.h"

#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(AddTranspose, SumsBothDirections) {
    std::vector<double> P = {1.0, 2.0, 3.0, 10.0, 20.0, 30.0, 100.0, 200.0, 300.0};
    add_transpose(P.data(), 3);
    EXPECT_EQ(P, (std::vector<double>{1.0, 12.0, 103.0, 12.0, 20.0, 230.0, 103.0, 230.0, 300.0}));
}

}  // namespace
}  // namespace ovik
