#include "tools/trust_options.h"

#include <cstddef>
#include <vector>

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

TEST(CheckDrawnRows, RefusesRowsThatFewColumnsTellApart) {
    constexpr std::size_t kColumns = 30;
    std::vector<double> X(kColumns * kColumns, 0.0);
    for (std::size_t n = 0; n < kColumns; ++n) {
        X[n * kColumns + n] = 1.0;
    }
    Options options;
    options.fit.metric = MetricKind::Cosine;
    EXPECT_NO_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}));
    options.stability = 1;
    EXPECT_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}), InputError);
    options.fit.metric = MetricKind::Euclidean;
    EXPECT_NO_THROW(check_drawn_rows(options, {X.data(), kColumns, kColumns}));
}

}  // namespace
}  // namespace ovik::tool
