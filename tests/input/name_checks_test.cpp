#include "input/name_checks.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

InspectedMatrix matrix_of(std::vector<std::string> rows, std::vector<std::string> columns = {}) {
    InspectedMatrix matrix;
    matrix.report.rows = rows.size();
    matrix.report.columns = columns.size();
    matrix.row_names = std::move(rows);
    matrix.column_names = std::move(columns);
    return matrix;
}

std::string refusal(InspectedMatrix& matrix, const TableLayout& layout = {}) {
    try {
        check_names("m", layout, {}, matrix);
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(CheckNames, RefusesNumbersThatAreNoIdentifiers) {
    for (const std::vector<std::string>& names :
         {std::vector<std::string>{"0.5", "1", "2"}, {"3", "1", "3"}, {"-1.5", "NA", "2"}}) {
        InspectedMatrix matrix = matrix_of(names);
        EXPECT_THAT(refusal(matrix),
                    StartsWith("m: field 1 is taken for the names of the rows, but holds numbers"));
    }
    InspectedMatrix matrix = matrix_of({"0.5", "1", "2"});
    TableLayout layout;
    layout.names_field.reset();
    EXPECT_EQ(refusal(matrix, layout), "");
}

TEST(CheckNames, NotesIdentifiersThatAreNumbers) {
    InspectedMatrix matrix = matrix_of({"850290", "850291", "12"});
    EXPECT_EQ(refusal(matrix), "");
    EXPECT_THAT(
        matrix.report.notes,
        ElementsAre("the names of the rows are numbers, in field 1: if they are values, say "
                    "no-names; if another column has the names, say which with "
                    "names-column NAME"));
}

TEST(CheckNames, LetsNamesPass) {
    for (const std::vector<std::string>& names :
         {std::vector<std::string>{"0.5", "x", "0.5"}, {"NA", "", "-"}, {"NAN1", "NAN1"}}) {
        InspectedMatrix matrix = matrix_of(names);
        EXPECT_EQ(refusal(matrix), "") << names[0];
        EXPECT_THAT(matrix.report.notes, IsEmpty());
    }
}

TEST(TransposedWarning, TellsOfGenesInColumns) {
    LoadOptions options;
    EXPECT_THAT(
        transposed_warning("m", options, matrix_of({"t0", "t1"}, {"YAL001C", "YAL002W", "x"})),
        HasSubstr("m: 2 of 3 columns are named as genes, and the map is one of the rows, "
                  "such as \"t0\""));
    EXPECT_EQ(transposed_warning("m", options, matrix_of({"t0"}, {"YAL001C", "x", "y"})), "");
    EXPECT_EQ(transposed_warning("m", options, matrix_of({"YAL003W"}, {"YAL001C", "YAL002W", "x"})),
              "");
    EXPECT_EQ(transposed_warning("m", options, matrix_of({"a"}, {"CDC28", "RPL3", "HO"})), "");
    options.is_gene = [](const std::string& name) { return name != "a"; };
    EXPECT_NE(transposed_warning("m", options, matrix_of({"a"}, {"CDC28", "RPL3", "HO"})), "");
}

TEST(TransposedWarning, TellsOfFarMoreColumnsThanRows) {
    InspectedMatrix wide = matrix_of({"t0", "t1", "t2"});
    wide.report.columns = 1000;
    EXPECT_THAT(transposed_warning("m", {}, wide),
                HasSubstr("there are far more columns (1000) than rows (3)"));
    wide.row_names = {"YAL001C", "YAL002W", "x"};
    EXPECT_EQ(transposed_warning("m", {}, wide), "");
    wide.row_names = {"t0", "t1", "t2"};
    wide.report.columns = 999;
    EXPECT_EQ(transposed_warning("m", {}, wide), "");
}

}  // namespace
}  // namespace ovik
