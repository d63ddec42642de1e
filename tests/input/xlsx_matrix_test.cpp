#include "input/xlsx_matrix.h"

#include <clocale>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/load.h"
#include "util/input_error.h"

#include "tests/support/gzip.h"
#include "tests/support/locales.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/workbook.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string text_cell(const std::string& text) {
    return "<c t='inlineStr'><is><t>" + text + "</t></is></c>";
}

std::string row(const std::string& name, const std::vector<std::string>& numbers) {
    std::string cells = text_cell(name);
    for (const std::string& number : numbers) {
        cells += number.empty() ? "<c/>" : "<c><v>" + number + "</v></c>";
    }
    return "<row>" + cells + "</row>";
}

const std::string kHeader =
    "<row>" + text_cell("gene") + text_cell("a") + text_cell("b") + "</row>";

class XlsxMatrix : public testing::Test {
  protected:
    LoadedMatrix loaded(const std::string& content) {
        remarks_.clear();
        return load(directory_.write("m.xlsx", content), options_, remarks_);
    }

    std::string refusal(const std::string& content) {
        try {
            loaded(content);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryDirectory directory_;
    LoadOptions options_;
    std::vector<Remark> remarks_;
    test::WorkbookFile file_{
        .sheets = {
            {"values",
             kHeader + row("TFC3", {"0.1", "1e-3"}) + row("ARG5,6", {"-2", "0.30000000000000004"}) +
                 row("VPS8", {"4", "5"})},
            {"other",
             kHeader + row("G1", {"1", "2"}) + row("G2", {"2", "1"}) + row("G3", {"3", "3"})}}};
};

std::vector<double> values_of(const LoadedMatrix& loaded) {
    const double* const values = loaded.matrix.values.get();
    return {values, values + loaded.matrix.report.rows * loaded.matrix.report.columns};
}

TEST_F(XlsxMatrix, HasTheNamesAndTheDoublesOfTheSheet) {
    file_.sheets.pop_back();
    for (const std::string& content : {file_.bytes(), test::gzipped(file_.bytes())}) {
        const LoadedMatrix matrix = loaded(content);
        EXPECT_EQ(matrix.format, "xlsx");
        EXPECT_THAT(matrix.matrix.row_names, ElementsAre("TFC3", "ARG5,6", "VPS8"));
        EXPECT_THAT(matrix.matrix.column_names, ElementsAre("a", "b"));
        EXPECT_THAT(values_of(matrix), ElementsAre(0.1, 1e-3, -2, 0.30000000000000004, 4, 5));
        EXPECT_THAT(remarks_, IsEmpty());
    }
}

TEST_F(XlsxMatrix, HasTheSameDoublesInEveryLocale) {
    const test::MadeLocales made({"de_DE.UTF-8"});
    if (!made.failure().empty()) {
        GTEST_SKIP() << made.failure();
    }
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    const LoadedMatrix matrix = loaded(file_.bytes());
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_THAT(values_of(matrix), ElementsAre(0.1, 1e-3, -2, 0.30000000000000004, 4, 5));
}

TEST_F(XlsxMatrix, IsOfTheFirstSheetOrTheOneThatIsNamed) {
    EXPECT_EQ(loaded(file_.bytes()).matrix.row_names[0], "TFC3");
    ASSERT_EQ(remarks_.size(), 1U);
    EXPECT_EQ(remarks_[0].kind, Remark::Kind::Note);
    EXPECT_EQ(remarks_[0].text,
              directory_.file("m.xlsx") +
                  ": read is the first of 2 sheets, \"values\"; sheet reads another: \"values\", "
                  "\"other\"");
    options_.sheet = "other";
    EXPECT_EQ(loaded(file_.bytes()).matrix.row_names[0], "G1");
    EXPECT_THAT(remarks_, IsEmpty());
    options_.sheet = "Other";
    EXPECT_THAT(
        refusal(file_.bytes()),
        HasSubstr("m.xlsx: the workbook has no sheet \"Other\", but \"values\", \"other\""));
    EXPECT_THAT(refusal("g\ta\nG1\t1\nG2\t2\nG3\t3\n"), testing::StartsWith("sheet: "));
}

TEST_F(XlsxMatrix, LacksValuesWhereCellsAreEmptyOrHoldErrors) {
    file_.sheets = {{"values",
                     kHeader + row("G1", {"1", ""}) + row("G2", {"2", "3"}) + "<row>" +
                         text_cell("G3") + "<c t='e'><v>#NUM!</v></c><c><v>4</v></c></row>" +
                         row("G4", {"5", "6"})}};
    options_.missing = MissingPolicy::Drop;
    options_.check_values = false;
    const LoadedMatrix matrix = loaded(file_.bytes());
    EXPECT_EQ(matrix.missing, 2U);
    EXPECT_THAT(matrix.matrix.row_names, ElementsAre("G2", "G4"));
    ASSERT_EQ(remarks_.size(), 2U);
    EXPECT_EQ(remarks_[0].text,
              directory_.file("m.xlsx") + ": 1 cell holds an error, taken as missing: B4 (#NUM!)");
}

TEST_F(XlsxMatrix, SaysWhatTheSheetHidesAndWhichNamesAreErrors) {
    file_.sheets = {{"values",
                     kHeader + row("G1", {"1", "2"}) + "<row hidden='1'>" + text_cell("G2") +
                         "<c><v>2</v></c><c><v>1</v></c></row><row><c t='e'><v>#REF!</v></c>"
                         "<c><v>4</v></c><c><v>4</v></c></row>"}};
    const LoadedMatrix matrix = loaded(file_.bytes());
    EXPECT_THAT(matrix.matrix.row_names, ElementsAre("G1", "G2", "#REF!"));
    ASSERT_EQ(remarks_.size(), 2U);
    EXPECT_EQ(remarks_[0].text,
              directory_.file("m.xlsx") +
                  ": hidden parts of the sheet are read as the others are: 1 row, 0 columns");
    EXPECT_EQ(remarks_[1].kind, Remark::Kind::Warning);
    EXPECT_EQ(remarks_[1].text,
              directory_.file("m.xlsx") +
                  ": 1 row opens with an error in the place of a name: A4 (#REF!)\nGive such rows "
                  "their names.");
}

TEST_F(XlsxMatrix, TakesNumbersAndTextsWithDecimalCommasOnRequest) {
    file_.sheets = {{"values",
                     kHeader + row("G1", {"1.5", "2"}) + row("G2", {"2", "3"}) + "<row>" +
                         text_cell("G3") + text_cell("0,25") + "<c><v>-4.5</v></c></row>"}};
    EXPECT_THAT(refusal(file_.bytes()), HasSubstr("\"0,25\""));
    options_.decimal = ',';
    EXPECT_THAT(values_of(loaded(file_.bytes())), ElementsAre(1.5, 2, 2, 3, 0.25, -4.5));
}

TEST_F(XlsxMatrix, SaysWhichGeneTheSheetTookForADate) {
    file_.styles = "<cellXfs><xf numFmtId='0'/><xf numFmtId='16'/></cellXfs>";
    file_.sheets = {{"values",
                     kHeader + row("G1", {"1", "2"}) + row("G2", {"2", "3"}) +
                         "<row><c s='1'><v>45566</v></c><c><v>4</v></c><c><v>4</v></c></row>"}};
    loaded(file_.bytes());
    ASSERT_EQ(remarks_.size(), 1U);
    EXPECT_THAT(remarks_[0].text, HasSubstr("line 4: \"1-Oct\", which may have been OCT1"));
}

TEST_F(XlsxMatrix, IsRefusedLikeTextByTheRowOfTheSheet) {
    file_.sheets = {
        {"values",
         kHeader + row("G1", {"1", "2"}) + row("G2", {"1e999", "3"}) + row("G3", {"2", "3"})}};
    EXPECT_THAT(refusal(file_.bytes()), HasSubstr("m.xlsx:3: field 2 of row \"G2\" is \"1e999\""));
    file_.sheets = {{"values",
                     kHeader + row("G1", {"1", "2"}) + row("G2", {"2", "1"}) +
                         row("G3", {"3", "3"}) + "<row><c/>" +
                         text_cell("Note: values are log2 ratios") + "</row>"}};
    EXPECT_THAT(refusal(file_.bytes()),
                HasSubstr("m.xlsx:5: row \"Note: values are log2 ratios\" has 0 values, but the "
                          "first row has 2"));
    file_.sheets = {{"values", ""}};
    EXPECT_THAT(refusal(file_.bytes()),
                HasSubstr("m.xlsx: sheet \"values\" holds no table of names and numbers"));
}

}  // namespace
}  // namespace ovik
