#include "input/known_columns.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/refusal.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Of three columns and two rows.
InspectedMatrix matrix_of(const std::vector<std::string>& names) {
    const std::vector<double> values = {1.0, 2.0, 3.0, 4.0, 5.0, 7.0};
    InspectedMatrix matrix;
    matrix.report.rows = 2;
    matrix.report.columns = 3;
    matrix.values = std::make_unique<double[]>(values.size());
    std::copy(values.begin(), values.end(), matrix.values.get());
    matrix.column_names = names;
    matrix.column_fields = {2, 3, 4};
    return matrix;
}

KnownColumns columns_called(const std::vector<std::string>& names) {
    KnownColumns known;
    known.names = names;
    known.means.assign(3, 0.0);
    return known;
}

std::string refusal(const KnownColumns& known, InspectedMatrix matrix) {
    return test::refusal_of([&] { match_columns("new.tsv", known, plainly_spelled, matrix); });
}

TEST(MeansOfColumns, AreTheirSumsByTheRows) {
    EXPECT_THAT(means_of_columns(matrix_of({})), ElementsAre(2.5, 3.5, 5.0));
}

TEST(MatchColumns, BringsColumnsIntoTheKnownOrder) {
    InspectedMatrix matrix = matrix_of({"heat", "cold", "salt"});
    match_columns("new.tsv", columns_called({"salt", "heat", "cold"}), plainly_spelled, matrix);
    const std::vector<double> values(matrix.values.get(), matrix.values.get() + 6);
    EXPECT_THAT(values, ElementsAre(3.0, 1.0, 2.0, 7.0, 4.0, 5.0));
    EXPECT_THAT(matrix.column_names, ElementsAre("salt", "heat", "cold"));
    EXPECT_THAT(matrix.column_fields, ElementsAre(4U, 2U, 3U));
}

TEST(MatchColumns, TakesColumnsByPlaceWhereOneSideHasNoNames) {
    for (const auto& [known, given] : {std::pair{std::vector<std::string>{}, "abc"},
                                       std::pair{std::vector<std::string>{"x", "y", "z"}, ""}}) {
        InspectedMatrix matrix = matrix_of({});
        for (const char* name = given; *name != '\0'; ++name) {
            matrix.column_names.emplace_back(1, *name);
        }
        match_columns("new.tsv", columns_called(known), plainly_spelled, matrix);
        EXPECT_EQ(matrix.values[0], 1.0);
    }
}

TEST(MatchColumns, TakesNamesThatStandTwiceInTheSameOrderAlone) {
    EXPECT_EQ(refusal(columns_called({"a", "a", "b"}), matrix_of({"a", "a", "b"})), "");
    EXPECT_EQ(refusal(columns_called({"a", "a", "b"}), matrix_of({"a", "b", "a"})),
              "new.tsv: two columns of the map are called \"a\", and the others stand in another "
              "order\nGive the columns the order that they have in the matrix of the map.");
    EXPECT_THAT(refusal(columns_called({"a", "b", "c"}), matrix_of({"a", "b", "b"})),
                HasSubstr("1 column of the map is missing: \"c\""));
}

TEST(MatchColumns, NamesColumnsThatAreMissingOrAdditional) {
    EXPECT_EQ(refusal(columns_called({"heat", "cold", "acid"}), matrix_of({"heat", "salt", "oil"})),
              "new.tsv: 2 columns of the map are missing: \"cold\", \"acid\"\n"
              "Add them, or make a map of the columns that are there.");
    KnownColumns known = columns_called({"heat", "cold"});
    known.means.pop_back();
    EXPECT_EQ(refusal(known, matrix_of({"heat", "salt", "cold"})),
              "new.tsv: 1 column is not of the map: \"salt\"\n"
              "Leave them out with skip-columns salt.");
}

TEST(MatchColumns, RefusesAMapWithoutACommonColumn) {
    EXPECT_EQ(refusal(columns_called({"x", "y", "z"}), matrix_of({"heat", "salt", "oil"})),
              "new.tsv: no column has a name of the map's columns: it has \"heat\", \"salt\", "
              "\"oil\", the map \"x\", \"y\", \"z\"\n"
              "Give rows of the same measurements, with the same names.");
}

TEST(MatchColumns, RefusesAnotherNumberOfColumnsWithoutNames) {
    KnownColumns known = columns_called({});
    known.means.push_back(0.0);
    EXPECT_THAT(refusal(known, matrix_of({})),
                HasSubstr("has 3 columns of values, and the map was made of 4\n"));
}

}  // namespace
}  // namespace ovik
