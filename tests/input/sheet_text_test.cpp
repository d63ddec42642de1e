#include "input/sheet_text.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/xml_tags.h"
#include "util/input_error.h"

namespace ovik {
namespace {

using testing::HasSubstr;

class SheetAsText : public testing::Test {
  protected:
    SheetText sheet(const std::string& rows) {
        const XmlPart part("m.xlsx", "<worksheet><sheetData>" + rows + "</sheetData></worksheet>");
        return text_of_sheet("m.xlsx", part.document(), {strings_, formats_, false, decimal_});
    }

    std::string text(const std::string& rows) { return sheet(rows).text; }

    std::string refusal(const std::string& rows) {
        try {
            sheet(rows);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    char decimal_ = '.';
    std::vector<std::string> strings_ = {"gene", "TFC3", "a\tb", "say \"x\"\n"};
    std::vector<DateFormat> formats_ = {
        DateFormat::None, DateFormat::DayAndMonth, DateFormat::Other};
};

TEST_F(SheetAsText, HasACellPerFieldAndARowPerLine) {
    EXPECT_EQ(
        text("<row r='1'><c r='A1' t='s'><v>0</v></c><c r='B1' t='inlineStr'><is><t>x</t></is>"
             "</c></row><row r='2'><c r='A2' t='s'><v>1</v></c><c r='B2'><v>0.1</v></c></row>"),
        "gene\tx\nTFC3\t0.1\n");
}

TEST_F(SheetAsText, KeepsTheDigitsOfNumbers) {
    EXPECT_EQ(text("<row><c><v>0.30000000000000004</v></c><c t='n'><v>1E-3</v></c>"
                   "<c><f>A1+1</f><v>-1.3</v></c><c t='str'><f>A1</f><v>text</v></c></row>"),
              "0.30000000000000004\t1E-3\t-1.3\ttext\n");
}

TEST_F(SheetAsText, HasTheDecimalSignThatIsAskedFor) {
    decimal_ = ',';
    EXPECT_EQ(text("<row><c><v>0.1</v></c><c><v>1.5E-3</v></c><c t='str'><v>0.1</v></c></row>"),
              "0,1\t1,5E-3\t0.1\n");
}

TEST_F(SheetAsText, KeepsThePlacesOfCellsThatAreEmptyOrLeftOut) {
    EXPECT_EQ(text("<row r='2'><c r='B2'><v>1</v></c><c r='D2'><v>2</v></c></row>"
                   "<row r='4'><c r='A4'><v>3</v></c><c r='B4' s='1'/><c r='E4' s='1'/></row>"),
              "\n\t1\t\t2\n\n3\t\t\t\n");
}

TEST_F(SheetAsText, DoesNotWidenATitleAboveTheTable) {
    EXPECT_EQ(text("<row><c t='s'><v>0</v></c></row>"
                   "<row><c t='s'><v>0</v></c><c><v>1</v></c><c><v>2</v></c></row>"
                   "<row><c t='s'><v>1</v></c></row><row/>"),
              "gene\ngene\t1\t2\nTFC3\t\t\n\n");
}

TEST_F(SheetAsText, QuotesWhatHoldsTabsQuotesOrLineEnds) {
    EXPECT_EQ(text("<row><c t='s'><v>2</v></c><c t='s'><v>3</v></c></row>"),
              "\"a\tb\"\t\"say \"\"x\"\" \"\n");
}

TEST_F(SheetAsText, ShowsDatesAsTheSheetDoes) {
    EXPECT_EQ(
        text("<row><c s='1'><v>45566</v></c><c s='2'><v>45566</v></c><c s='0'><v>45566</v></c>"
             "<c s='7'><v>45566</v></c><c s='1'><v>-3</v></c></row>"),
        "1-Oct\t2024-10-01\t45566\t45566\t-3\n");
}

TEST_F(SheetAsText, HasWordsForTruthAndCountsErrors) {
    const SheetText sheet_text = sheet(
        "<row><c t='b'><v>1</v></c><c t='b'><v>0</v></c></row>"
        "<row><c><v>1</v></c><c r='AB2' t='e'><v>#DIV/0!</v></c><c t='e'><v>#N/A</v></c></row>");
    EXPECT_THAT(sheet_text.text, testing::StartsWith("TRUE\tFALSE\t"));
    EXPECT_THAT(sheet_text.text, testing::EndsWith("\t#N/A\t#N/A\n"));
    EXPECT_EQ(sheet_text.errors, 2U);
    EXPECT_EQ(sheet_text.first_error, "AB2 (#DIV/0!)");
}

TEST_F(SheetAsText, IsEmptyWithoutRows) {
    EXPECT_EQ(text(""), "");
}

TEST_F(SheetAsText, TakesAnEmptyTextOfAFormulaForAnEmptyCell) {
    EXPECT_EQ(text("<row><c><v>1</v></c><c t='str'><f>IF(A1,\"\",2)</f><v></v></c>"
                   "<c s='1'><v></v></c><c><v>3</v></c></row>"),
              "1\t\t\t3\n");
}

TEST_F(SheetAsText, IsRefusedWhereItHoldsNoValueToRead) {
    EXPECT_THAT(refusal("<row/><row><c/><c><f>B1*2</f></c></row>"),
                HasSubstr("m.xlsx: cell B2 holds a formula that has not been calculated"));
    // As programs write it that leave the result empty.
    EXPECT_THAT(refusal("<row><c><v>1</v></c><c><f>A1*2</f><v></v></c></row>"),
                HasSubstr("m.xlsx: cell B1 holds a formula that has not been calculated"));
    EXPECT_THAT(refusal("<row><c s='1'><f>A1*2</f><v/></c></row>"), HasSubstr("cell A1 holds"));
    EXPECT_THAT(refusal("<row><c t='s'><v>4</v></c></row>"),
                HasSubstr("m.xlsx: the workbook lacks"));
    EXPECT_THAT(refusal("<row><c t='s'><v>x</v></c></row>"), HasSubstr("lacks text x of its list"));
}

TEST_F(SheetAsText, IsRefusedWhereRowsOrCellsAreNotInOrder) {
    for (const char* const rows : {"<row r='2'/><row r='2'/>",
                                   "<row r='0'/>",
                                   "<row r='1048577'/>",
                                   "<row r='99999999999999999999'/>"}) {
        EXPECT_THAT(refusal(rows), HasSubstr("the rows of the sheet are not in order")) << rows;
    }
    for (const char* const cells : {"<c r='B1'/><c r='A1'/>",
                                    "<c r='A1'/><c r='A1'/>",
                                    "<c r='1'/>",
                                    "<c r='XFE1'/>",
                                    "<c r='AAAAAAAAAAAAAAAA1'/>"}) {
        EXPECT_THAT(refusal(std::string("<row>") + cells + "</row>"),
                    HasSubstr("the cells of the sheet are not in order"))
            << cells;
    }
}

TEST_F(SheetAsText, QuotesNamesThatWouldMakeARowARemark) {
    const std::string header =
        "<row><c t='s'><v>0</v></c><c t='inlineStr'><is><t>a</t></is></c></row>";
    const auto row = [](const std::string& first) {
        return "<row>" + first + "<c><v>5</v></c></row>";
    };
    const std::string number = "<c t='inlineStr'><is><t>#1</t></is></c>";
    EXPECT_EQ(text(header + row(number)), "gene\ta\n\"#1\"\t5\n");
    // A remark above the header, and one of a single cell.
    EXPECT_EQ(text(row(number) + header), "#1\t5\ngene\ta\n");
    EXPECT_EQ(text(header + "<row>" + number + "</row>"), "gene\ta\n#1\t\n");
    const SheetText errors = sheet(header + row("<c t='e'><v>#REF!</v></c>"));
    EXPECT_EQ(errors.text, "gene\ta\n\"#REF!\"\t5\n");
    EXPECT_EQ(errors.errors, 0U);
    EXPECT_EQ(errors.error_names, 1U);
    EXPECT_EQ(errors.first_error_name, "A2 (#REF!)");
}

TEST_F(SheetAsText, CountsHiddenRowsAndColumns) {
    const XmlPart part("m.xlsx",
                       "<worksheet><cols><col min='2' max='3' hidden='1'/><col min='5' max='5'/>"
                       "<col min='6' max='16384' hidden='true'/></cols><sheetData>"
                       "<row hidden='1'><c><v>1</v></c></row><row hidden='1'/>"
                       "<row><c r='F3'><v>1</v></c></row></sheetData></worksheet>");
    const SheetText found =
        text_of_sheet("m.xlsx", part.document(), {strings_, formats_, false, '.'});
    EXPECT_EQ(found.hidden_rows, 1U);
    EXPECT_EQ(found.hidden_columns, 3U);
}

}  // namespace
}  // namespace ovik
