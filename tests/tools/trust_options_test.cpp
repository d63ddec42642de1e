#include "tools/trust_options.h"

#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik::tool {
namespace {

TEST(CheckJudgedRows, RefusesFewRowsWhereSingleOnesAreAskedFor) {
    Options options;
    EXPECT_NO_THROW(check_judged_rows(options, 3, 2));
    options.reliability = true;
    EXPECT_THROW(check_judged_rows(options, 29, 2), InputError);
    EXPECT_NO_THROW(check_judged_rows(options, 30, 2));
}

TEST(CheckJudgedRows, RefusesToDrawFromFewColumnsOrComponents) {
    Options options;
    options.stability = 5;
    EXPECT_NO_THROW(check_judged_rows(options, 30, 5));
    EXPECT_THROW(check_judged_rows(options, 29, 5), InputError);
    EXPECT_THROW(check_judged_rows(options, 30, 4), InputError);
    options.sparse_components = 50;
    EXPECT_THROW(check_judged_rows(options, 30, 50), InputError);
}

}  // namespace
}  // namespace ovik::tool
