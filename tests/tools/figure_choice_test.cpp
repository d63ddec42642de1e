#include "tools/figure_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

TEST(FigureSizeOf, KnowsColumnsOfJournalsAndLengths) {
    const struct {
        const char* text;
        FigureSize size;
    } kCases[] = {
        {"single", {89, 0, true}},
        {"double", {183, 0, true}},
        {"120mm", {120, 0, true}},
        {"89x60mm", {89, 60, true}},
        {"89mmx60.5mm", {89, 60.5, true}},
        {"1200", {1200, 0, false}},
        {"800px", {800, 0, false}},
        {"1200x900", {1200, 900, false}},
        {"1200x900px", {1200, 900, false}},
    };

    for (const auto& [text, expected] : kCases) {
        const FigureSize size = figure_size_of(text);
        EXPECT_EQ(size.width, expected.width) << text;
        EXPECT_EQ(size.height, expected.height) << text;
        EXPECT_EQ(size.millimetres, expected.millimetres) << text;
    }
}

TEST(FigureSizeOf, RefusesWhatIsNoSize) {
    for (const char* text : {"",
                             "triple",
                             "mm",
                             "89cm",
                             "89x",
                             "x60",
                             "89mmx60",
                             "89mmx60px",
                             "-89mm",
                             "1200x900x2",
                             "nan",
                             "inf",
                             "1e3",
                             "0",
                             "89 mm"}) {
        EXPECT_THROW(figure_size_of(text), InputError) << text;
    }
    for (const char* text : {"29mm", "601mm", "199", "10001", "89x10mm", "1200x20000"}) {
        EXPECT_THROW(figure_size_of(text), InputError) << text;
    }
}

TEST(HighlightedNames, AreAListOrAFile) {
    EXPECT_THAT(highlighted_names("CDC28, CLN1,,CDC28"), ElementsAre("CDC28", "CLN1"));
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("genes.txt",
                                             "\xEF\xBB\xBF"
                                             "CDC28\r\n\nCLN1\tG1 cyclin\r\nCDC28\n");
    EXPECT_THAT(highlighted_names(path), ElementsAre("CDC28", "CLN1"));
    EXPECT_THROW(highlighted_names(" , "), InputError);
    EXPECT_THROW(highlighted_names(directory.write("empty", "\n")), InputError);
    EXPECT_THROW(highlighted_names(directory.write("no_text", std::string("CLN1\0CLN2", 9))),
                 InputError);
}

TEST(FindHighlighted, TakesTheVeryNameFirstThenTheGene) {
    const Texts rows = {"YBR160W", "CLN1", "CLN1", "x"};
    const HighlightedRows found = find_highlighted({"cdc28", "CLN1", "nothing", "x"}, rows, true);
    EXPECT_THAT(found.rows, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(found.unknown, ElementsAre("nothing"));
    // Names that are none of genes are compared letter by letter.
    const HighlightedRows other = find_highlighted({"cdc28"}, rows, false);
    EXPECT_THAT(other.rows, IsEmpty());
}

TEST(SettleFigure, WarnsOfUnknownNamesAndRefusesNothingElse) {
    const Texts rows = {"CDC28", "CLN1"};
    Options options;
    options.title = "file";
    options.highlight = "CLN1,NOSUCH";
    testing::internal::CaptureStderr();
    const FigureOptions figure = settle_figure(options, rows);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("1 of 2 names is of no row: NOSUCH"));
    EXPECT_THAT(figure.highlighted, ElementsAre(1));
    EXPECT_EQ(figure.title, "");
    options.title_is_given = true;
    options.highlight = "NOSUCH";
    EXPECT_THROW(settle_figure(options, rows), InputError);
    options.highlight = "";
    EXPECT_EQ(settle_figure(options, rows).title, "file");
}

}  // namespace
}  // namespace ovik::tool
