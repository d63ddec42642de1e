#include "tools/trust_options.h"

#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik::tool {
namespace {

TEST(CheckJudgedRows, RefusesFewRowsWhereSingleOnesAreAskedFor) {
    Options options;
    EXPECT_NO_THROW(check_judged_rows(options, 3));
    options.reliability = true;
    EXPECT_THROW(check_judged_rows(options, 29), InputError);
    EXPECT_NO_THROW(check_judged_rows(options, 30));
}

}  // namespace
}  // namespace ovik::tool
