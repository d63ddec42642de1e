#include "tools/constant_rows.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/refusal.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// Rows "A", "B" and so on of three columns, from line 2 on, with the labels "a", "b" and so on.
LoadedMatrix matrix_of(const std::vector<double>& values) {
    LoadedMatrix loaded;
    loaded.matrix.report.rows = values.size() / 3;
    loaded.matrix.report.columns = 3;
    for (std::size_t n = 0; n < loaded.matrix.report.rows; ++n) {
        loaded.matrix.row_names.emplace_back(1, static_cast<char>('A' + n));
        loaded.matrix.row_lines.push_back(n + 2);
        loaded.labels.emplace_back(1, static_cast<char>('a' + n));
    }
    loaded.matrix.values.reset(new double[values.size()]);
    std::copy(values.begin(), values.end(), loaded.matrix.values.get());
    return loaded;
}

/// Rows B and D do not vary; D is 0.
LoadedMatrix some_matrix() {
    return matrix_of({1, 2, 4, 5, 5, 5, 2, 1, 7, 0, 0, 0, 3, 9, 1});
}

Options options_of(MetricKind metric, bool drops) {
    Options options;
    options.matrix = "m.tsv";
    options.fit.metric = metric;
    options.drops_constant_rows = drops;
    return options;
}

/// What is printed while they are settled.
std::string settled(LoadedMatrix& loaded, const Options& options) {
    testing::internal::CaptureStdout();
    settle_constant_rows(loaded, options);
    return testing::internal::GetCapturedStdout();
}

TEST(ConstantRows, AreRefusedByNameAndLine) {
    LoadedMatrix loaded = some_matrix();
    EXPECT_EQ(
        test::refusal_of(
            [&] { settle_constant_rows(loaded, options_of(MetricKind::Pearson, false)); }),
        "m.tsv: 2 rows have no correlation with any other, since the values do not vary: \"B\" "
        "(line 3), \"D\" (line 5)\nLeave such rows out (--constant-rows drop), or compare the "
        "rows by --metric euclidean.");
    EXPECT_THAT(
        test::refusal_of(
            [&] { settle_constant_rows(loaded, options_of(MetricKind::Cosine, false)); }),
        StartsWith("m.tsv: 1 row has no cosine with any other, since all values are 0: \"D\" "
                   "(line 5)\n"));
}

TEST(ConstantRows, AreLeftOutWithTheirNamesAndLabels) {
    LoadedMatrix loaded = some_matrix();
    EXPECT_THAT(
        settled(loaded, options_of(MetricKind::Spearman, true)),
        HasSubstr("m.tsv: 2 rows without variation left out: \"B\" (line 3), \"D\" (line 5); "
                  "3 remain\n"));
    EXPECT_EQ(loaded.matrix.report.rows, 3U);
    EXPECT_THAT(loaded.matrix.row_names, ElementsAre("A", "C", "E"));
    EXPECT_THAT(loaded.labels, ElementsAre("a", "c", "e"));
    EXPECT_EQ(loaded.matrix.values[3], 2.0);
}

TEST(ConstantRows, AreNoneToOtherMetrics) {
    for (const MetricKind metric : {MetricKind::Euclidean, MetricKind::Precomputed}) {
        LoadedMatrix loaded = some_matrix();
        EXPECT_EQ(settled(loaded, options_of(metric, true)), "");
        EXPECT_EQ(loaded.matrix.report.rows, 5U);
    }
}

TEST(ConstantRows, LeaveRowsEnoughAndSuchAsCanBeToldApart) {
    LoadedMatrix few = matrix_of({1, 2, 4, 5, 5, 5, 2, 1, 7});
    testing::internal::CaptureStdout();
    EXPECT_THAT(
        test::refusal_of([&] { settle_constant_rows(few, options_of(MetricKind::Pearson, true)); }),
        StartsWith("m.tsv, without the rows that do not vary: has 2 rows"));
    LoadedMatrix alike = matrix_of({1, 2, 4, 5, 5, 5, 2, 4, 8, 3, 6, 12});
    EXPECT_THAT(test::refusal_of(
                    [&] { settle_constant_rows(alike, options_of(MetricKind::Pearson, true)); }),
                HasSubstr("have a correlation of 1"));
    testing::internal::GetCapturedStdout();
}

}  // namespace
}  // namespace ovik::tool
