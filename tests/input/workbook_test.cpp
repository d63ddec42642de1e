#include "input/workbook.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/workbook.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kRow = "<row><c t='s'><v>1</v></c><c s='1'><v>45566</v></c></row>";

std::string refusal(const std::string& bytes) {
    try {
        static_cast<void>(Workbook("m.xlsx", bytes).sheetText(0, '.'));
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(Workbook, HasSheetsByName) {
    const test::WorkbookFile file{
        .sheets = {{"expression &amp; more", "<row><c><v>1</v></c></row>"},
                   {"notes", "<row><c><v>2</v></c></row>"}}};
    const std::string bytes = file.bytes();
    const Workbook workbook("m.xlsx", bytes);
    EXPECT_THAT(workbook.sheetNames(), ElementsAre("expression & more", "notes"));
    EXPECT_EQ(workbook.sheetText(0, '.').text, "1\n");
    EXPECT_EQ(workbook.sheetText(1, '.').text, "2\n");
}

TEST(Workbook, LeavesHiddenSheetsOut) {
    test::WorkbookFile file{.sheets = {{"a", "<row/>"}, {"b", "<row/>"}}};
    file.first_attributes = "state=\"hidden\"";
    EXPECT_THAT(Workbook("m.xlsx", file.bytes()).sheetNames(), ElementsAre("b"));
    file.sheets.pop_back();
    EXPECT_THAT(refusal(file.bytes()), HasSubstr("m.xlsx: the workbook has no sheet of cells"));
}

TEST(Workbook, KnowsTextsStylesAndCalendar) {
    test::WorkbookFile file{.sheets = {{"a", kRow}}};
    file.shared_strings = "<si><t>gene</t></si><si><t>TFC3</t></si>";
    file.styles =
        "<numFmts><numFmt numFmtId='164' formatCode='d\\-mmm'/></numFmts>"
        "<cellXfs><xf numFmtId='0'/><xf numFmtId='164'/></cellXfs>";
    EXPECT_EQ(Workbook("m.xlsx", file.bytes()).sheetText(0, '.').text, "TFC3\t1-Oct\n");
    file.styles = "<cellXfs><xf numFmtId='0'/><xf numFmtId='14'/></cellXfs>";
    EXPECT_EQ(Workbook("m.xlsx", file.bytes()).sheetText(0, '.').text, "TFC3\t2024-10-01\n");
    file.properties = "<workbookPr date1904='1'/>";
    EXPECT_EQ(Workbook("m.xlsx", file.bytes()).sheetText(0, '.').text, "TFC3\t2028-10-02\n");
    file.styles.clear();
    EXPECT_EQ(Workbook("m.xlsx", file.bytes()).sheetText(0, '.').text, "TFC3\t45566\n");
}

TEST(Workbook, OfAnotherKindOrWithoutItsPartsIsRefused) {
    EXPECT_THAT(refusal(test::ZipWriter::archive({{"xl/workbook.bin", "x"}})),
                HasSubstr("m.xlsx: this is a workbook of a kind that is not read (.xlsb?)"));
    test::ZipWriter::Members members = test::WorkbookFile{.sheets = {{"a", kRow}}}.members();
    EXPECT_THAT(refusal(test::ZipWriter::archive(members)), HasSubstr("lacks text 1 of its list"));
    members[1].first = "elsewhere";
    EXPECT_THAT(refusal(test::ZipWriter::archive(members)), HasSubstr("lacks its sheet \"a\""));
    EXPECT_THAT(refusal("PK\x03\x04"), HasSubstr("m.xlsx: the archive that it is made of"));
}

}  // namespace
}  // namespace ovik
