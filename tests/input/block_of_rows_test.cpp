#include "input/block_of_rows.h"

#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TableLayout with_commas() {
    TableLayout layout;
    layout.delimiter = ',';
    return layout;
}

BlockOfRows block_of(std::string_view text, const TableLayout& layout = with_commas()) {
    BlockOfRows block;
    block.addAll(text, {layout, ValueReader({}, {})});
    return block;
}

TEST(BlockOfRows, CountsLinesAndHoldsRows) {
    const BlockOfRows block = block_of("G1,1,2\n# a remark\n\nG2,3,4\n");
    EXPECT_EQ(block.lines, 4U);
    EXPECT_THAT(block.names, ElementsAre("G1", "G2"));
    EXPECT_THAT(block.row_lines, ElementsAre(1, 4));
    EXPECT_THAT(block.values, ElementsAre(1.0, 2.0, 3.0, 4.0));
    EXPECT_EQ(block.report.numbers, 4U);
}

TEST(BlockOfRows, CountsTheLinesWithinQuotes) {
    const BlockOfRows block = block_of("\"G\n1\",\"1\",2\nG2,3,4\n\"G,3\",5,6");
    EXPECT_EQ(block.lines, 4U);
    EXPECT_THAT(block.names, ElementsAre("G 1", "G2", "G,3"));
    EXPECT_THAT(block.row_lines, ElementsAre(1, 3, 4));
    EXPECT_THAT(block.values, ElementsAre(1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
    EXPECT_EQ(block.first_bad_quote_line, std::nullopt);
}

TEST(BlockOfRows, TakesNoteOfRowsThatGoOnOverLineEnds) {
    const BlockOfRows block =
        block_of("G1,1,2\n\"G2,1,2\nG3,1,2\nG4\",3,4\nG5,5,6\n\"G\n6\",7,8\n\"G7\",1,2\n");
    EXPECT_THAT(block.names, ElementsAre("G1", "G2,1,2 G3,1,2 G4", "G5", "G 6", "G7"));
    EXPECT_EQ(block.report.rows_over_lines.count, 2U);
    EXPECT_EQ(block.report.rows_that_may_be_several.count, 1U);
    EXPECT_EQ(block.report.rows_that_may_be_several.first_line, 2U);
    EXPECT_EQ(block.report.rows_that_may_be_several.last_line, 4U);
    EXPECT_EQ(block.lines, 8U);
}

TEST(BlockOfRows, TakesDescriptionsWithLineEndsForNoRows) {
    const BlockOfRows block = block_of("G1,\"one, of\nthe list\",1,2,3,4\n");
    EXPECT_EQ(block.report.rows_over_lines.count, 1U);
    EXPECT_EQ(block.report.rows_that_may_be_several.count, 0U);
}

TEST(BlockOfRows, KeepsCommentsThatMayBeRows) {
    const BlockOfRows block =
        block_of("G1,1,2\n#N/A,3,4\n# a remark, of 2020, and more\n#,,\n# 5\n  #1,5,\n");
    ASSERT_EQ(block.comments.size(), 2U);
    EXPECT_EQ(block.comments[0].line, 2U);
    EXPECT_EQ(block.comments[0].first_field, "#N/A");
    EXPECT_EQ(block.comments[0].length.values, 2U);
    EXPECT_EQ(block.comments[1].first_field, "#1");
    EXPECT_EQ(block.comments[1].length.values, 1U);
    EXPECT_EQ(block.comments[1].length.untrimmed, 2U);
    EXPECT_THAT(block.names, ElementsAre("G1"));
}

TEST(BlockOfRows, KnowsTheLineOfAQuoteThatNothingCloses) {
    EXPECT_EQ(block_of("G1,1\nG2,\"2\nG3,3\n").first_bad_quote_line, 2U);
}

TEST(BlockOfRows, CountsFieldsBehindTheEmptyOnesOfEveryRow) {
    TableLayout layout;
    layout.empty_front = 1;
    layout.leaveOut(1);
    const BlockOfRows block = block_of("\tG1\t7\t1\nG2\t8\t2\n\t\t9\t3\n", layout);
    EXPECT_THAT(block.names, ElementsAre("G1", "G2", ""));
    EXPECT_THAT(block.values, ElementsAre(1.0, 2.0, 3.0));
    EXPECT_EQ(block.report.unnamed.count, 1U);
}

TEST(BlockOfRows, TakesANumberOrAMissingValueBehindALostNameForAValue) {
    for (const char* const row : {"\t1\t2\n", "\tNA\t2\n", "\t-\t2\n"}) {
        EXPECT_EQ(block_of(row, TableLayout()).report.lost_names.count, 1U) << row;
    }
    for (const char* const row : {"\tG1\t2\n", "NA\t2\n", "7\t2\n"}) {
        EXPECT_EQ(block_of(row, TableLayout()).report.lost_names.count, 0U) << row;
    }
    TableLayout layout;
    layout.empty_front = 1;
    EXPECT_EQ(block_of("\tNA\t2\n", layout).report.lost_names.count, 0U);
    EXPECT_EQ(block_of("\t\tNA\t2\n", layout).report.lost_names.count, 1U);
    layout.names_field = 1;
    EXPECT_EQ(block_of("\tG1\t1\t2\n", layout).report.lost_names.count, 0U);
    layout.names_field.reset();
    EXPECT_EQ(block_of("\t\t1\t2\n", layout).report.lost_names.count, 0U);
}

TEST(BlockOfRows, LeavesOutWhatTheLayoutSaysAndEndsWhereItSays) {
    TableLayout layout = with_commas();
    layout.leaveOut(1);
    layout.no_rows = {"EWEIGHT"};
    layout.end_mark = "!end";
    const BlockOfRows block = block_of("EWEIGHT,,1\nG1,a gene,2\nG2,,3\n!end\nG3,x,4\n", layout);
    EXPECT_THAT(block.names, ElementsAre("G1", "G2"));
    EXPECT_THAT(block.values, ElementsAre(2.0, 3.0));
    EXPECT_THAT(block.report.no_rows, ElementsAre("EWEIGHT"));
    EXPECT_TRUE(block.has_ended);
    EXPECT_EQ(block.report.not_numbers.count, 0U);
}

TEST(BlockOfRows, TakesNoteOfFieldsWithTheirPlaces) {
    const BlockOfRows block = block_of("G1,1,abc\nG2,NA,2,5\nG3,inf,3\n");
    ASSERT_EQ(block.report.not_numbers.count, 1U);
    const FieldPlace& place = block.report.not_numbers.places.front();
    EXPECT_EQ(place.line, 1U);
    EXPECT_EQ(place.row, "G1");
    EXPECT_EQ(place.field, 3U);
    EXPECT_EQ(place.text, "abc");
    EXPECT_EQ(block.report.not_finite.count, 1U);
    EXPECT_TRUE(std::isnan(block.values[2]));
    EXPECT_EQ(block.report.by_column[0].missing, 1U);
    EXPECT_EQ(block.report.by_column[1].texts, 1U);
    EXPECT_EQ(block.lengths[1].values, 3U);
}

TEST(BlockOfRows, RemembersWhatTrimmingTookAway) {
    const BlockOfRows block = block_of("G1\t1\t\t\n", TableLayout());
    ASSERT_EQ(block.lengths.size(), 1U);
    EXPECT_EQ(block.lengths[0].values, 1U);
    EXPECT_EQ(block.lengths[0].untrimmed, 3U);
}

TEST(BlockOfRows, OfNothingIsEmpty) {
    EXPECT_THAT(block_of("").names, IsEmpty());
    EXPECT_EQ(block_of("").lines, 0U);
}

}  // namespace
}  // namespace ovik
