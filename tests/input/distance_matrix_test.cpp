#include "input/distance_matrix.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/lettered_matrix.h"
#include "tests/support/refusal.h"

namespace ovik {
namespace {

using test::lettered_matrix;
using testing::HasSubstr;
using testing::StartsWith;

std::string refusal(const std::vector<double>& values,
                    std::size_t columns,
                    const DistanceWords& words = {}) {
    return test::refusal_of([&] {
        check_distance_matrix({values.data(), values.size() / columns, columns}, words);
    });
}

std::string refusal(const InspectedMatrix& matrix) {
    return test::refusal_of([&] { check_distance_matrix("d.tsv", matrix); });
}

TEST(DistanceMatrix, MayBeOfAnySize) {
    EXPECT_EQ(refusal({0, 1, 2, 1, 0, 3, 2, 3, 0}, 3), "");
    EXPECT_EQ(refusal({0, 1e300, 1e300, 0}, 2), "");
    EXPECT_EQ(refusal({0, 1e-299, 1e-299, 0}, 2), "");
}

TEST(DistanceMatrix, MayBeOffByRounding) {
    EXPECT_EQ(refusal({2e-16, 1, 2 + 4e-16, 1, -2e-16, 3, 2, 3, 0}, 3), "");
    EXPECT_EQ(refusal({0, 1, -1e-16, 1, 0, 3, 0, 3, 0}, 3), "");
    EXPECT_EQ(refusal({2e-8, 1, 1, 0}, 2), "");
    EXPECT_NE(refusal({2e-6, 1, 1, 0}, 2), "");
    EXPECT_EQ(refusal({0, 1, 1 + 5e-7, 0}, 2), "");
    EXPECT_NE(refusal({0, 1, 1 + 2e-6, 0}, 2), "");
    EXPECT_NE(refusal({0, 1, -2e-6, 1, 0, 1, -2e-6, 1, 0}, 3), "");
}

TEST(DistanceMatrix, IsSquare) {
    EXPECT_THAT(refusal({0, 1, 2, 1, 0, 3}, 3),
                StartsWith("2 rows and 3 columns: a matrix of distances is square\n"));
    EXPECT_THAT(refusal(lettered_matrix({0, 1, 2, 1, 0, 3}, 3)), StartsWith("d.tsv: 2 rows and 3"));
}

TEST(DistanceMatrix, IsRefusedWithRowColumnAndValues) {
    const double kNan = std::nan("");
    const double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_THAT(refusal({0, 1, kNan, 1, 0, 3, 2, 3, 0}, 3),
                StartsWith("row 0, column 2, both counted from 0: the distance is nan\n"));
    EXPECT_THAT(refusal({0, 1, 2, 1, 0, kInfinity, 2, 3, 0}, 3), HasSubstr("distance is inf"));
    EXPECT_THAT(refusal({0, 2e300, 2e300, 0}, 2), HasSubstr("the distance is 2e+300\n"));
    EXPECT_THAT(refusal({0, 1, -2, 1, 0, 3, -2, 3, 0}, 3),
                StartsWith("row 0, column 2, both counted from 0: the distance -2 is negative\n"));
    EXPECT_THAT(refusal({1, 0.5, 0.5, 1}, 2),
                HasSubstr("row 0, column 0, both counted from 0: the distance of the row from "
                          "itself is 1, not 0\nDistances are needed, not similarities"));
    EXPECT_THAT(refusal({0, 1, 2, 1, 0, 3, 2, 3.5, 0}, 3),
                StartsWith("row 2, column 1, both counted from 0: the distance is 3.5, and 3 the "
                           "other way round\n"));
    EXPECT_THAT(refusal({0, 0, 0, 0}, 2), HasSubstr("nothing to embed"));
}

TEST(DistanceMatrix, HasNoDistanceBesideWhichTheOthersAreNothing) {
    const auto with_pair = [](double distance) {
        return std::vector<double>{0, 1, 1, distance, 1, 0, 2, 2, 1, 2, 0, 3, distance, 2, 3, 0};
    };
    EXPECT_EQ(refusal(with_pair(1e20), 4), "");
    EXPECT_THAT(refusal(with_pair(1.1e20), 4),
                StartsWith("row 0, column 3, both counted from 0: the distance is 1.1e+20, beside "
                           "which the others are as good as 0: rows have their nearest at 1\n"));
    EXPECT_THAT(refusal(lettered_matrix(with_pair(1e30), 4)),
                StartsWith("d.tsv:2: row 1 (\"A\"), column 4 (\"D\"): the distance is 1e+30"));
    // What rounding leaves between rows that are equal says nothing of the others.
    EXPECT_EQ(refusal({0, 1e-30, 1, 2, 1e-30, 0, 1, 2, 1, 1, 0, 2, 2, 2, 2, 0}, 4), "");
}

TEST(DistanceMatrix, FromAFileIsRefusedWithLineAndNames) {
    EXPECT_THAT(refusal(lettered_matrix({0, 1, 2, 1, 0, 3, 2, 4, 0}, 3)),
                StartsWith("d.tsv:6: row 3 (\"C\"), column 2 (\"B\"): the distance is 4, and 3"));
}

TEST(DistanceMatrix, HasTheRowsInTheOrderOfTheColumns) {
    InspectedMatrix matrix = lettered_matrix({0, 1, 2, 1, 0, 3, 2, 3, 0}, 3);
    EXPECT_EQ(refusal(matrix), "");
    matrix.column_names = {"A", "B", "C"};
    EXPECT_EQ(refusal(matrix), "");
    matrix.column_names = {"A", "C", "B"};
    EXPECT_THAT(refusal(matrix),
                StartsWith("d.tsv: row 2 is \"B\", and column 2 is \"C\"\nIn a matrix of"));
    matrix.has_names = false;
    EXPECT_EQ(refusal(matrix), "");
}

}  // namespace
}  // namespace ovik
