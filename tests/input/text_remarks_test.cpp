#include "input/text_remarks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TextRemarks, AreThoseOfTheLayoutIfThereIsNothingElse) {
    TableLayout layout;
    layout.no_rows = {"EWEIGHT", "AID"};
    EXPECT_THAT(text_notes(layout, {}), IsEmpty());
    EXPECT_THAT(text_warnings(layout, {}), IsEmpty());
    layout.notes = {"a note"};
    layout.warnings = {": a warning"};
    MatrixReport report;
    report.no_rows = {"AID", "EWEIGHT", "AID"};
    EXPECT_THAT(text_notes(layout, report), ElementsAre("a note", "no rows: EWEIGHT, AID"));
    EXPECT_THAT(text_warnings(layout, report), ElementsAre(": a warning"));
}

TEST(TextRemarks, TellOfCommentsThatHaveTheFieldsOfARow) {
    MatrixReport report;
    report.skipped_rows = {1, {{7, "#G1", 1, "#G1"}}};
    report.skipped_names = {4, {{3, "", 1, "#N/A"}, {5, "", 1, "#1"}, {6, "", 1, "#REF!"}}};
    EXPECT_THAT(text_notes({}, report),
                ElementsAre("1 line that opens with # is skipped, though it has the fields of a "
                            "row: line 7 (\"#G1\")"));
    EXPECT_THAT(text_warnings({}, report),
                ElementsAre(": 4 lines that open with # are skipped, though they have the fields "
                            "of a row: line 3 (\"#N/A\"), line 5 (\"#1\"), line 6 (\"#REF!\"), "
                            "...\nIf they are rows, write their names in quotes or without #."));
}

TEST(TextRemarks, TellOfRowsThatGoOnOverLineEnds) {
    MatrixReport report;
    report.rows_over_lines = {2, 5, 6};
    EXPECT_THAT(text_notes({}, report),
                ElementsAre("lines 5 to 6 are one row, with a line end in quotes (2 such rows)"));
    EXPECT_THAT(text_warnings({}, report), IsEmpty());
    report.rows_over_lines = {1, 5, 10};
    report.rows_that_may_be_several = {1, 5, 10};
    EXPECT_THAT(text_notes({}, report), IsEmpty());
    EXPECT_THAT(text_warnings({}, report),
                ElementsAre(":5: lines 5 to 10 are one row, with line ends and delimiters in "
                            "quotes\nIf they are rows of their own, take the quotes away that open "
                            "and close there, or write them twice within quotes."));
}

TEST(NameBehindHash, IsAnErrorOfASpreadsheetOrANumber) {
    for (const char* const field : {"#N/A", "#REF!", "#NAME?", "#DIV/0!", "#1", "#042"}) {
        EXPECT_TRUE(is_name_behind_hash(field)) << field;
    }
    for (const char* const field : {"", "#", "N/A", "1", "# 1", "#G1", "#gene"}) {
        EXPECT_FALSE(is_name_behind_hash(field)) << field;
    }
}

}  // namespace
}  // namespace ovik
