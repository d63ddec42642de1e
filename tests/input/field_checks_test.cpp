#include "input/field_checks.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

namespace ovik {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class CheckFields : public testing::Test {
  protected:
    CheckFields() {
        layout_.header = {"gene", "a", "b"};
        matrix_.report.rows = 4;
        matrix_.report.columns = 2;
        matrix_.report.numbers = 8;
        matrix_.column_fields = {2, 3};
    }

    std::string refusal() {
        try {
            check_fields("m", layout_, options_, matrix_);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    MatrixReport& report() { return matrix_.report; }

    TableLayout layout_;
    LoadOptions options_;
    InspectedMatrix matrix_;
};

TEST_F(CheckFields, LetsNumbersPass) {
    EXPECT_EQ(refusal(), "");
    layout_.promised_rows = 4;
    layout_.end_mark = "!end";
    report().has_end_mark = true;
    EXPECT_EQ(refusal(), "");
}

TEST_F(CheckFields, RefusesNamesThatWereLost) {
    report().lost_names = {2, {{5, "1.5", 1, ""}}};
    EXPECT_THAT(refusal(),
                StartsWith("m:5: the row has no name: the line opens with the delimiter, and "
                           "\"1.5\" would be taken for the name (2 such rows)\n"));
}

TEST_F(CheckFields, RefusesTextWithoutNumbersWithTheCure) {
    report().numbers = 0;

    const struct {
        char used;
        std::optional<char> guessed;
        const char* cure;
    } kCases[] = {
        {',', '\t', "no numbers with , between the fields\nThere are with delimiter tab, which"},
        {'\t', ' ', "no numbers with tab between the fields\nThere are with delimiter space"},
        {'|', std::nullopt, "no numbers with | between the fields\nEvery line behind the first"},
        {',', ',', "no numbers with , between the fields\nEvery line behind the first"},
    };

    for (const auto& [used, guessed, cure] : kCases) {
        layout_.delimiter = used;
        layout_.guessed_delimiter = guessed;
        EXPECT_THAT(refusal(), HasSubstr(cure));
    }
}

TEST_F(CheckFields, RefusesDecimalCommas) {
    report().with_text_behind = {3,
                                 {{2, "G1", 2, "0,5"}, {2, "G1", 3, "1,25"}, {3, "G2", 2, "2,5"}}};
    report().decimal_commas = report().with_text_behind;
    EXPECT_EQ(refusal(),
              "m: 3 numbers have a decimal comma\n"
              "  line 2: row \"G1\", column \"a\" (field 2): \"0,5\"\n"
              "  line 2: row \"G1\", column \"b\" (field 3): \"1,25\"\n"
              "  line 3: row \"G2\", column \"a\" (field 2): \"2,5\"\n"
              "and would lose what stands behind it\ndecimal , reads them.");
    options_.decimal = '.';
    EXPECT_THAT(refusal(), EndsWith("Write the numbers without such commas."));
}

TEST_F(CheckFields, RefusesCommasBetweenThousands) {
    report().with_text_behind = {1, {{2, "G1", 2, "1,234"}}};
    report().grouped_digits = report().with_text_behind;
    EXPECT_THAT(refusal(), StartsWith("m: 1 number has a comma among the digits\n  line 2: row"));
    EXPECT_THAT(refusal(), EndsWith("if they are decimal commas, decimal , reads them."));
}

TEST_F(CheckFields, RefusesPointsBetweenThousands) {
    report().with_text_behind = {2, {{2, "G1", 2, "1.000,00"}, {3, "G2", 2, "1.007,05"}}};
    report().point_groups = report().with_text_behind;
    EXPECT_EQ(refusal(),
              "m: 2 numbers have points between thousands\n"
              "  line 2: row \"G1\", column \"a\" (field 2): \"1.000,00\"\n"
              "  line 3: row \"G2\", column \"a\" (field 2): \"1.007,05\"\n"
              "which are no part of a number\n"
              "Take the points out of the numbers; decimal commas are then read with decimal ,.");
    options_.decimal = ',';
    EXPECT_THAT(refusal(), EndsWith("\nTake the points out of the numbers."));
    // Most of the texts are another matter.
    report().with_text_behind.count = 4;
    EXPECT_THAT(refusal(), StartsWith("m: 4 fields are no numbers"));
}

TEST_F(CheckFields, RefusesCommasBetweenThousandsWhereTheyAreTheDecimalSign) {
    report().with_text_behind = {1, {{2, "G1", 2, "1,234.5"}}};
    report().grouped_digits = report().with_text_behind;
    options_.decimal = ',';
    EXPECT_EQ(refusal(),
              "m: 1 number has commas between thousands\n"
              "  line 2: row \"G1\", column \"a\" (field 2): \"1,234.5\"\n"
              "and decimal , takes commas for the decimal sign\n"
              "Write the numbers without commas between thousands, and leave the option out.");
}

TEST_F(CheckFields, RefusesColumnsOfTextByName) {
    report().not_numbers = {2, {{2, "G1", 2, "x"}, {3, "G2", 2, "y"}}};
    report().with_text_behind = {1, {{4, "G3", 2, "3 x"}}};
    // Three of the four rows; one of them is more than half of two that are not missing.
    report().by_column = {{.texts = 3, .missing = 0}};
    EXPECT_EQ(refusal(),
              "m: 1 column is text, not values\n  column \"a\" (field 2): 3 of 4 rows\nas on line "
              "2: \"x\"\nLeave out what is no value with skip-columns a; names of the rows in "
              "another column than the first are read with names-column a.");
    report().by_column = {{.texts = 1, .missing = 3}, {.texts = 2, .missing = 1}};
    EXPECT_THAT(refusal(), HasSubstr("m: 2 columns are text, not values\n"));
    EXPECT_THAT(refusal(), HasSubstr("with skip-columns a,b;"));
    // Headers that options cannot tell apart are numbers.
    layout_.header = {"gene", "x,y", "x,y"};
    EXPECT_THAT(refusal(), HasSubstr("with skip-columns #2,#3;"));
}

TEST_F(CheckFields, RefusesSingleTexts) {
    report().not_numbers = {3, {{3, "G2", 3, "ND"}, {4, "G3", 2, "ND"}, {4, "G3", 3, "x"}}};
    report().with_text_behind = {1, {{2, "G1", 2, "6.5kg"}}};
    report().by_column = {{.texts = 2, .missing = 0}, {.texts = 2, .missing = 0}};
    EXPECT_EQ(refusal(),
              "m: 4 fields are no numbers\n"
              "  line 2: row \"G1\", column \"a\" (field 2): \"6.5kg\"\n"
              "  line 3: row \"G2\", column \"b\" (field 3): \"ND\"\n"
              "  line 4: row \"G3\", column \"a\" (field 2): \"ND\"\n"
              "  ...\n"
              "and text is no value\n"
              "Mend such fields; if a text stands for a missing value, say so with na 6.5kg; a "
              "column that is no values is left out with skip-columns a.");
}

TEST_F(CheckFields, RefusesTablesThatAreCutOff) {
    layout_.end_mark = "!end";
    EXPECT_THAT(refusal(), StartsWith("m: the table does not end with !end: the file was cut off"));
    layout_.end_mark = "!series_matrix_table_end";
    report().has_end_mark = true;
    report().rows = 0;
    EXPECT_THAT(refusal(), StartsWith("m: the table of the series matrix is empty\n"));
    EXPECT_THAT(refusal(), HasSubstr("are in its supplementary files"));
    report().rows = 4;
    layout_.end_mark = "";
    layout_.promised_rows = 5;
    EXPECT_THAT(refusal(), StartsWith("m: says that it has 5 rows, and has 4\n"));
}

TEST_F(CheckFields, LeavesRaggedRowsToTheCheckOfTheMatrix) {
    report().ragged_rows = 1;
    layout_.promised_rows = 5;
    EXPECT_EQ(refusal(), "");
}

TEST(RefuseQuote, NamesTheLine) {
    try {
        refuse_quote("m", 7);
        ADD_FAILURE();
    } catch (const InputError& error) {
        EXPECT_THAT(error.what(), StartsWith("m:7: a quote opens a field, and none closes it"));
    }
}

}  // namespace
}  // namespace ovik
