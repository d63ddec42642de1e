#include "input/transformations.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"
#include "util/rounded_functions.h"

#include "tests/support/refusal.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

using testing::DoubleEq;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pointwise;

InspectedMatrix matrix_of(std::size_t columns, const std::vector<double>& values) {
    InspectedMatrix matrix;
    matrix.report.rows = values.size() / columns;
    matrix.report.columns = columns;
    matrix.values = std::make_unique<double[]>(values.size());
    std::copy(values.begin(), values.end(), matrix.values.get());
    for (std::size_t n = 0; n < matrix.report.rows; ++n) {
        matrix.row_names.push_back("G" + std::to_string(n + 1));
        matrix.row_lines.push_back(n + 2);
    }
    return matrix;
}

std::vector<double> values_of(const InspectedMatrix& matrix) {
    const double* const values = matrix.values.get();
    return {values, values + matrix.report.rows * matrix.report.columns};
}

std::vector<double> transformed(const Transformations& transformations,
                                std::size_t columns,
                                const std::vector<double>& values) {
    InspectedMatrix matrix = matrix_of(columns, values);
    transform("m.tsv", transformations, plainly_spelled, matrix);
    return values_of(matrix);
}

std::string refusal(const Transformations& transformations, InspectedMatrix matrix) {
    try {
        transform("m.tsv", transformations, plainly_spelled, matrix);
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

constexpr Transformations kLog1p{.log1p = true};
constexpr Transformations kRows{.centre = Centring::Rows};
constexpr Transformations kColumns{.centre = Centring::Columns};
constexpr Transformations kScale{.scale = true};

TEST(Centring, IsKnownByItsName) {
    EXPECT_EQ(centring_of("rows"), Centring::Rows);
    EXPECT_EQ(centring_of("columns"), Centring::Columns);
    EXPECT_EQ(centring_of("Rows"), std::nullopt);
    EXPECT_EQ(centring_of(""), std::nullopt);
}

TEST(Transformations, AreNamedInTheirOrder) {
    EXPECT_EQ(names_of({}), "");
    EXPECT_FALSE(Transformations().any());
    EXPECT_EQ(names_of(kLog1p), "log1p");
    EXPECT_EQ(names_of({.log1p = true, .centre = Centring::Rows, .scale = true}),
              "log1p, center rows, scale");
    EXPECT_EQ(names_of({.log1p = false, .centre = Centring::Columns, .scale = true}),
              "center columns, scale");
    for (const Transformations& one : {kLog1p, kRows, kColumns, kScale}) {
        EXPECT_TRUE(one.any());
    }
}

TEST(RowTotal, IsThatOfEveryRowBeforeLogarithms) {
    EXPECT_THAT(transformed({.row_total = RowTotal{8.0}}, 2, {1, 3, 0, 0, 6, 10}),
                ElementsAre(2, 6, 0, 0, 3, 5));
    EXPECT_THAT(transformed({.row_total = RowTotal{}, .log1p = true}, 2, {1, 3, 2, 2, 4, 12}),
                Pointwise(DoubleEq(),
                          {std::log1p(1.0),
                           std::log1p(3.0),
                           std::log1p(2.0),
                           std::log1p(2.0),
                           std::log1p(1.0),
                           std::log1p(3.0)}));
    EXPECT_THAT(refusal({.row_total = RowTotal{}}, matrix_of(2, {0, 1, 2, -0.5, -1, 3})),
                HasSubstr("row \"G2\" has a value below 0 in column 2, and row-totals is for"));
    EXPECT_THAT(refusal({.row_total = RowTotal{}}, matrix_of(2, {1e308, 1e308, 1, 1})),
                HasSubstr("too large to be added up"));
}

TEST(Log1p, IsTheNaturalLogarithmOfOneMore) {
    EXPECT_THAT(transformed(kLog1p, 2, {0, 1, 1e-20, 1e6}),
                ElementsAre(0.0, std::log1p(1.0), 1e-20, std::log1p(1e6)));
}

TEST(Log1p, IsCorrectlyRoundedWhereThatIsWanted) {
    std::vector<double> values(4000);
    std::vector<double> rounded(values.size());
    std::vector<double> of_library(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = 0.37 * static_cast<double>(i);
        rounded[i] = rounded_log1p(values[i]);
        of_library[i] = std::log1p(values[i]);
    }
    EXPECT_EQ(transformed({.log1p = true, .is_portable = true}, 2, values), rounded);
    EXPECT_EQ(transformed(kLog1p, 2, values), of_library);
}

TEST(Log1p, RefusesTheFirstNegativeValueByItsPlace) {
    InspectedMatrix matrix = matrix_of(2, {0, 1, 2, -0.5, -1, 3});
    EXPECT_THAT(refusal(kLog1p, std::move(matrix)),
                HasSubstr("m.tsv:3: row \"G2\" has a value below 0 in column 2, and log1p"));
    matrix = matrix_of(2, {0, 1, 2, -0.5, -1, 3});
    matrix.column_names = {"a", "b"};
    matrix.row_lines.assign(3, 0);
    EXPECT_THAT(refusal(kLog1p, std::move(matrix)),
                HasSubstr("m.tsv: row \"G2\" has a value below 0 in column \"b\""));
    EXPECT_EQ(refusal(kLog1p, matrix_of(1, {-0.0, 1})), "");
}

TEST(CentringOfRows, SubtractsTheMeanOfEachRow) {
    EXPECT_THAT(transformed(kRows, 3, {1, 2, 6, 5, 5, 5}), ElementsAre(-2, -1, 3, 0, 0, 0));
}

TEST(CentringOfRows, MakesRowsThatDoNotVaryExactlyZero) {
    // The rounded mean of 36 times 0.7 is not 0.7.
    std::vector<double> values(36, 0.7);
    for (std::size_t d = 0; d < 36; ++d) {
        values.push_back(static_cast<double>(d * d));
    }
    // Values that were missing, and got the mean of the others.
    double sum = 0.0;
    for (int d = 0; d < 33; ++d) {
        sum += 0.7;
    }
    ASSERT_NE(sum / 33.0, 0.7);
    values.insert(values.end(), 33, 0.7);
    values.insert(values.end(), 3, sum / 33.0);
    for (const bool scale : {false, true}) {
        const std::vector<double> result =
            transformed({.centre = Centring::Rows, .scale = scale}, 36, values);
        const auto row = [&result](std::size_t n) {
            return std::vector<double>(&result[36 * n], &result[36 * n] + 36);
        };
        EXPECT_THAT(row(0), Each(0.0));
        EXPECT_THAT(row(1), Each(testing::Ne(0.0)));
        EXPECT_THAT(row(2), Each(0.0));
    }
    // Near one another, but not by rounding alone.
    EXPECT_THAT(transformed(kRows, 3, {1.0, 1.0, 1.0 + 1e-14}), Each(testing::Ne(0.0)));
}

TEST(CentringOfColumns, SubtractsTheMeanOfEachColumn) {
    EXPECT_THAT(transformed(kColumns, 2, {1, 10, 2, 20, 6, 60}),
                ElementsAre(-2, -20, -1, -10, 3, 30));
}

TEST(CentringOfColumns, MakesConstantColumnsExactlyZero) {
    // The rounded mean of 49 times 0.1 is not 0.1.
    EXPECT_THAT(transformed(kColumns, 1, std::vector<double>(49, 0.1)), Each(0.0));
}

TEST(Scaling, DividesByTheStandardDeviationOfOneDegreeLess) {
    // Deviations -1, 0, 1 and -10, 0, 10: the sums of squares are 2 and 200, halved.
    EXPECT_THAT(transformed(kScale, 2, {1, 10, 2, 20, 3, 30}), ElementsAre(1, 1, 2, 2, 3, 3));
}

TEST(Scaling, LeavesConstantColumnsAsTheyAreAndSaysSo) {
    std::vector<double> values;
    for (int n = 0; n < 49; ++n) {
        values.insert(values.end(), {0.1, n < 24 ? 1.0 : 2.0});
    }
    InspectedMatrix matrix = matrix_of(2, values);
    EXPECT_EQ(transform("m.tsv", kScale, plainly_spelled, matrix),
              "m.tsv: transformed by scale (standard deviations with n - 1; 1 column is constant "
              "and not scaled)");
    EXPECT_EQ(matrix.values[0], 0.1);
    EXPECT_EQ(matrix.values[96], 0.1);
    matrix = matrix_of(2, values);
    transform("m.tsv", {.centre = Centring::Columns, .scale = true}, plainly_spelled, matrix);
    EXPECT_EQ(matrix.values[0], 0.0);
    EXPECT_EQ(matrix.values[96], 0.0);
}

TEST(Scaling, DoesNotBlowUpWhatRoundingLeavesOfCentredRows) {
    // Rows of three equal values: what their mean is off by is no measurement.
    std::vector<double> values;
    for (int n = 0; n < 20; ++n) {
        values.insert(values.end(), 3, 0.1 * n + 0.7);
    }
    const std::vector<double> result =
        transformed({.centre = Centring::Rows, .scale = true}, 3, values);
    EXPECT_THAT(result, Each(testing::Lt(1e-15)));
    EXPECT_THAT(result, Each(testing::Gt(-1e-15)));
}

TEST(Scaling, ReachesValuesWhoseSquaresAreOutOfRange) {
    EXPECT_THAT(transformed(kScale, 1, {1e200, 2e200, 3e200}),
                Each(testing::AllOf(testing::Gt(0.99), testing::Lt(3.01))));
    EXPECT_THAT(transformed(kScale, 1, {1e-200, 2e-200, 3e-200}),
                Each(testing::AllOf(testing::Gt(0.99), testing::Lt(3.01))));
}

TEST(Transformations, AreAppliedInTheirOrder) {
    const std::vector<double> values = {0, 3, 1, 7, 4, 2, 9, 8};
    const std::vector<double> steps =
        transformed(kScale, 2, transformed(kColumns, 2, transformed(kLog1p, 2, values)));
    EXPECT_EQ(transformed({.log1p = true, .centre = Centring::Columns, .scale = true}, 2, values),
              steps);
    InspectedMatrix matrix = matrix_of(2, values);
    EXPECT_EQ(transform("m.tsv",
                        {.log1p = true, .centre = Centring::Columns, .scale = false},
                        plainly_spelled,
                        matrix),
              "m.tsv: transformed by log1p, center columns");
}

TEST(Transformations, RefuseWhatIsMissingAndSumsOutOfRange) {
    EXPECT_THAT(
        refusal(kRows, matrix_of(1, {1, std::nan(""), 2})),
        HasSubstr("m.tsv: values are missing, and cannot be transformed\nSay with missing"));
    EXPECT_THAT(refusal(kColumns, matrix_of(1, {1.7e308, 1.7e308, 1e308})),
                HasSubstr("m.tsv: the values are too large to be transformed"));
}

TEST(Transformations, GiveTheSameBitsForAnyNumberOfThreads) {
    constexpr std::size_t kColumnCount = 67;
    std::vector<double> values(1031 * kColumnCount);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<double>((i * 7919) % 10007) / 3.0;
    }
    for (const Centring centre : {Centring::Rows, Centring::Columns}) {
        const Transformations all{.log1p = true, .centre = centre, .scale = true};
        std::vector<double> of_one;
        for (const int threads : test::kThreadCounts) {
            const test::ThreadCount count(threads);
            const std::vector<double> result = transformed(all, kColumnCount, values);
            if (threads == 1) {
                of_one = result;
            }
            ASSERT_EQ(result.size(), of_one.size());
            EXPECT_EQ(std::memcmp(result.data(), of_one.data(), result.size() * sizeof(double)), 0)
                << threads;
        }
    }
}

TEST(TransformAlike, GivesRowsOfTheMatrixTheirBits) {
    const std::vector<double> values = {
        1.0, 2.5, 7.0, 3.0, 0.1, 7.0, 11.0, 0.3, 7.0, 2.0, 4.0, 7.0};
    for (const char* const names : {"log1p",
                                    "center rows",
                                    "center columns",
                                    "scale",
                                    "log1p, center columns, scale",
                                    "log1p, center rows, scale"}) {
        const Transformations transformations = transformations_of(names).value();
        InspectedMatrix matrix = matrix_of(3, values);
        KnownColumns learnt;
        transform("m.tsv", transformations, plainly_spelled, matrix, &learnt);
        const std::vector<double> expected = values_of(matrix);
        for (std::size_t n = 0; n < 4; ++n) {
            InspectedMatrix row = matrix_of(3, {&values[3 * n], &values[3 * n] + 3});
            EXPECT_EQ(
                transform_alike("new.tsv", transformations, learnt, plainly_spelled, row),
                "new.tsv: transformed by " + std::string(names) + ", as the rows of the map were");
            EXPECT_THAT(values_of(row),
                        ElementsAre(expected[3 * n], expected[3 * n + 1], expected[3 * n + 2]))
                << names;
        }
    }
}

TEST(TransformAlike, RefusesWhatCannotBeTransformed) {
    KnownColumns known;
    known.divisors = {1e-300};
    const auto refused = [&known](const Transformations& transformations, double value) {
        InspectedMatrix matrix = matrix_of(1, {value});
        return test::refusal_of(
            [&] { transform_alike("new.tsv", transformations, known, plainly_spelled, matrix); });
    };
    EXPECT_THAT(refused({.log1p = true}, -0.5), HasSubstr("row \"G1\" has a value below 0"));
    EXPECT_THAT(refused({.scale = true}, 1e300), HasSubstr("too large to be transformed"));
    EXPECT_THAT(refused({.scale = true}, std::nan("")), HasSubstr("values are missing"));
}

TEST(TransformationsOf, UndoesTheirNames) {
    EXPECT_FALSE(transformations_of("").value().any());
    const Transformations all{.log1p = true, .centre = Centring::Rows, .scale = true};
    const std::optional<Transformations> read = transformations_of(names_of(all));
    ASSERT_TRUE(read);
    EXPECT_EQ(names_of(*read), names_of(all));
    EXPECT_FALSE(transformations_of("log2"));
    for (const char* const totals : {"median", "10000"}) {
        const Transformations cells{.row_total = row_total_of(totals), .log1p = true};
        EXPECT_EQ(names_of(cells), "row totals " + std::string(totals) + ", log1p");
        const std::optional<Transformations> again = transformations_of(names_of(cells));
        ASSERT_TRUE(again);
        EXPECT_EQ(names_of(*again), names_of(cells));
    }
    EXPECT_EQ(names_of(transformations_of("row totals 8").value()), "row totals 8");
    EXPECT_FALSE(transformations_of("row totals"));
    EXPECT_FALSE(transformations_of("row totals many, log1p"));
}

}  // namespace
}  // namespace ovik
