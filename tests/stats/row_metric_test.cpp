#include "stats/row_metric.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/plain/plain_metrics.h"
#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr MetricKind kCorrelations[] = {
    MetricKind::Pearson, MetricKind::Cosine, MetricKind::Spearman};

std::vector<double> prepared(std::vector<double> values, std::size_t columns, MetricKind metric) {
    prepare_rows({values.data(), values.size() / columns, columns}, metric);
    return values;
}

std::vector<double> plainly_prepared(std::vector<double> values,
                                     std::size_t columns,
                                     MetricKind metric) {
    metric == MetricKind::Pearson  ? plain::pearson_rows(values, columns)
    : metric == MetricKind::Cosine ? plain::cosine_rows(values, columns)
                                   : plain::spearman_rows(values, columns);
    return values;
}

std::vector<std::size_t> found_in(const std::vector<double>& values,
                                  std::size_t columns,
                                  MetricKind metric) {
    return rows_without_direction({values.data(), values.size() / columns, columns}, metric);
}

std::string refusal(const std::vector<double>& values,
                    std::size_t columns,
                    MetricKind metric,
                    const RowWords& words = {}) {
    return test::refusal_of([&] {
        check_rows({values.data(), values.size() / columns, columns}, metric, words, "Cure.");
    });
}

TEST(CheckDirections, LeavesRowsInTheSameDirectionAlone) {
    const std::vector<double> values = {1, 2, 4, 2, 4, 8};
    EXPECT_NO_THROW(
        check_directions({values.data(), 2, 3}, MetricKind::Pearson, {"m.tsv", {}}, "Cure."));
    EXPECT_THAT(refusal(values, 3, MetricKind::Pearson), HasSubstr("correlation of 1"));
}

TEST(PrepareRows, GivesTheBitsOfThePlainProgramForAnyThreads) {
    // Of few different values, so that there are equal ones to rank.
    std::vector<double> values = test::random_values(203 * 17, 5);
    for (std::size_t i = 0; i < values.size(); i += 3) {
        values[i] = std::round(values[i]);
    }
    for (const MetricKind metric : kCorrelations) {
        const std::vector<double> expected = plainly_prepared(values, 17, metric);
        for (const int threads : {1, 2, 5}) {
            const test::ThreadCount scope(threads);
            EXPECT_EQ(prepared(values, 17, metric), expected) << static_cast<int>(metric);
        }
    }
}

TEST(PrepareRows, LeavesRowsUnderOtherMetricsAsTheyAre) {
    const std::vector<double> values = test::random_values(60, 8);
    EXPECT_EQ(prepared(values, 6, MetricKind::Euclidean), values);
    EXPECT_EQ(prepared(values, 6, MetricKind::Precomputed), values);
}

TEST(PrepareRows, MakesHalfTheSquaredDistanceOneMinusTheCorrelation) {
    constexpr std::size_t kColumns = 36;
    const std::vector<double> values = test::random_values(20 * kColumns, 3);
    const std::vector<double> rows = prepared(values, kColumns, MetricKind::Pearson);
    for (std::size_t n = 0; n < 20; ++n) {
        for (std::size_t m = 0; m < 20; ++m) {
            double squares = 0.0;
            for (std::size_t d = 0; d < kColumns; ++d) {
                const double difference = rows[n * kColumns + d] - rows[m * kColumns + d];
                squares += difference * difference;
            }
            // Of a few roundings of numbers around 1.
            EXPECT_NEAR(0.5 * squares,
                        plain::correlation_distance(
                            values.data() + n * kColumns, values.data() + m * kColumns, kColumns),
                        1e-14);
        }
    }
}

TEST(PrepareRows, GivesTheSameBytesForARowTimesAnyPowerOfTwo) {
    const std::vector<double> values = test::random_values(40 * 9, 21, 3.0);
    const double largest =
        std::fabs(*std::max_element(values.begin(), values.end(), [](double a, double b) {
            return std::fabs(a) < std::fabs(b);
        }));
    for (const MetricKind metric : kCorrelations) {
        const std::vector<double> expected = prepared(values, 9, metric);
        for (const int power : {-950, -300, -1, 1, 52, 511, 990}) {
            std::vector<double> scaled = values;
            for (double& value : scaled) {
                value = std::ldexp(value, power);
            }
            EXPECT_EQ(prepared(scaled, 9, metric), expected) << power;
        }
        // The largest values that the engine takes.
        std::vector<double> huge = values;
        int power = 0;
        while (std::ldexp(largest, power + 1) <= 1e300) {
            ++power;
        }
        for (double& value : huge) {
            value = std::ldexp(value, power);
        }
        EXPECT_EQ(prepared(huge, 9, metric), expected);
    }
}

RC_GTEST_PROP(PrepareRows, GivesTheSameBytesWhateverPowerOfTwoEachRowIsScaledBy, ()) {
    const auto columns = *rc::gen::inRange<std::size_t>(3, 12);
    const auto seed = *rc::gen::arbitrary<unsigned int>();
    const std::vector<double> values = test::random_values(6 * columns, seed);
    std::vector<double> scaled = values;
    for (std::size_t n = 0; n < 6; ++n) {
        const int power = *rc::gen::inRange(-900, 990);
        for (std::size_t d = 0; d < columns; ++d) {
            scaled[n * columns + d] = std::ldexp(values[n * columns + d], power);
        }
    }
    for (const MetricKind metric : kCorrelations) {
        RC_ASSERT(prepared(scaled, columns, metric) == prepared(values, columns, metric));
    }
}

TEST(PrepareRows, RanksEqualValuesByTheMeanOfTheirPlaces) {
    // Ranks 1.5, 4, 1.5, 4, 4.
    const std::vector<double> ranks = {1.5, 4.0, 1.5, 4.0, 4.0};
    EXPECT_EQ(prepared({-2.0, 7.0, -2.0, 7.0, 7.0}, 5, MetricKind::Spearman),
              prepared(ranks, 5, MetricKind::Pearson));
    EXPECT_EQ(prepared({0.0, 1.0, -0.0, 3.0}, 4, MetricKind::Spearman),
              prepared({1.5, 3.0, 1.5, 4.0}, 4, MetricKind::Pearson));
}

TEST(PrepareRows, GivesTheSameBytesForARowUnderAnyRisingFunction) {
    const std::vector<double> values = test::random_values(30 * 8, 2);
    std::vector<double> bent = values;
    for (double& value : bent) {
        value = std::exp(value) - 5.0;
    }
    EXPECT_EQ(prepared(bent, 8, MetricKind::Spearman), prepared(values, 8, MetricKind::Spearman));
}

TEST(RowsWithoutDirection, AreThoseThatDoNotVary) {
    const std::vector<double> values = {1, 2, 3, 4, 4, 4, 0, 0, 0, 5, 5, 6};
    EXPECT_THAT(found_in(values, 3, MetricKind::Pearson), ElementsAre(1, 2));
    EXPECT_THAT(found_in(values, 3, MetricKind::Spearman), ElementsAre(1, 2));
    EXPECT_THAT(found_in(values, 3, MetricKind::Cosine), ElementsAre(2));
    EXPECT_THAT(found_in(values, 3, MetricKind::Euclidean), IsEmpty());
}

TEST(RowsWithoutDirection, DoNotVaryWhereRoundingMayBeAllThatDoes) {
    constexpr double kNext = 1.0 + std::numeric_limits<double>::epsilon();
    EXPECT_THAT(found_in({0.1, 0.1, 0.1, 1, 1, kNext}, 3, MetricKind::Pearson), ElementsAre(0, 1));
    EXPECT_THAT(found_in({1, 1, 1.0 + 1e-14}, 3, MetricKind::Pearson), IsEmpty());
    // Ranks know of no rounding.
    EXPECT_THAT(found_in({1, 1, kNext}, 3, MetricKind::Spearman), IsEmpty());
    // Nor does a row that is tiny as a whole.
    EXPECT_THAT(found_in({1e-300, 2e-300, 4e-300}, 3, MetricKind::Pearson), IsEmpty());
}

TEST(CheckRows, NamesTheFirstThreeRowsAndTheCure) {
    const std::vector<double> values = {1, 2, 3, 4, 4, 4, 0, 0, 0, 5, 5, 5, 7, 7, 7, 2, 1, 1};
    const std::vector<std::string> names = {"A", "B", "C", "D", "E", "F"};
    EXPECT_EQ(refusal(values, 3, MetricKind::Pearson, {"", names}),
              "4 rows have no correlation with any other, since the values do not vary: \"B\", "
              "\"C\", \"D\", ...\nCure.");
    const std::vector<std::size_t> lines = {2, 3, 7, 0, 9, 10};
    EXPECT_EQ(
        refusal(values, 3, MetricKind::Pearson, {"m.tsv", names, lines}),
        "m.tsv: 4 rows have no correlation with any other, since the values do not vary: \"B\" "
        "(line 3), \"C\" (line 7), \"D\", ...\nCure.");
    EXPECT_EQ(refusal(values, 3, MetricKind::Cosine),
              "1 row has no cosine with any other, since all values are 0: row 2 (counted from "
              "0)\nCure.");
    EXPECT_EQ(refusal(values, 3, MetricKind::Euclidean), "");
}

TEST(CheckRows, RefusesTooFewColumns) {
    EXPECT_THAT(refusal({1, 2, 3, 4, 6, 5}, 2, MetricKind::Pearson),
                HasSubstr("at least 3 columns"));
    EXPECT_THAT(refusal({1, 2, 3}, 1, MetricKind::Cosine), HasSubstr("at least 2 columns"));
    EXPECT_EQ(refusal({1, 2, 3, 4, 6, 5}, 2, MetricKind::Cosine), "");
}

TEST(CheckRows, RefusesRowsThatAreAllAlike) {
    const std::vector<double> values = {1, 2, 4, 0.3, 0.6, 1.2, 11, 21, 41};
    for (const MetricKind metric : {MetricKind::Pearson, MetricKind::Spearman}) {
        EXPECT_THAT(refusal(values, 3, metric), HasSubstr("have a correlation of 1"));
    }
    EXPECT_EQ(refusal(values, 3, MetricKind::Cosine), "");
}

}  // namespace
}  // namespace ovik
