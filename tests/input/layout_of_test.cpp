#include "input/layout_of.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kAnnotated = "id\tgene\ta\tnote\tb\n1\tG1\t1\tx\t2\n2\tG2\t3\ty\t4\n";

class LayoutOf : public testing::Test {
  protected:
    TableLayout layout(const std::string& content) {
        MatrixSource source(directory_.write("m", content));
        return layout_of(source, options_);
    }

    std::string refusal(const std::string& content) {
        try {
            layout(content);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    std::vector<std::size_t> valuesOf(const std::string& content) {
        const TableLayout found = layout(content);
        return found.valueFields(found.valuesAmong(found.header.size()));
    }

    test::TemporaryDirectory directory_;
    LoadOptions options_;
};

TEST_F(LayoutOf, IsOrdinaryIfNothingSaysOtherwise) {
    const TableLayout plain = layout("gene,a\nG1,1\nG2,2\n");
    EXPECT_TRUE(plain.isOrdinary());
    EXPECT_EQ(plain.delimiter, ',');
    EXPECT_EQ(plain.lines_above, 1U);
    EXPECT_THAT(plain.notes, IsEmpty());
}

TEST_F(LayoutOf, IsThatOfAKnownKindAndSaysSo) {
    const TableLayout pcl = layout("YORF\tNAME\tGWEIGHT\ta\nEWEIGHT\t\t\t1\nYAL001C\tx 1\t1\t2\n");
    EXPECT_EQ(pcl.name, "gene expression table (.pcl)");
    EXPECT_THAT(pcl.notes,
                ElementsAre("gene expression table (.pcl): names from YORF; no values: NAME and "
                            "GWEIGHT"));
}

TEST_F(LayoutOf, LeavesOutTheColumnsThatAreNamed) {
    options_.skip_columns = {"gene", "4"};
    EXPECT_THAT(valuesOf(kAnnotated), ElementsAre(2U, 4U));
    options_.skip_columns = {"gene", "none"};
    EXPECT_THAT(refusal(kAnnotated),
                HasSubstr("m: there is no column \"none\" (skip-columns)\nThe columns are \"id\", "
                          "\"gene\", \"a\", \"note\", \"b\"; \"#1\" is always the first."));
    EXPECT_THAT(refusal("id\t\t\tb\nG1\t1\t2\t3\n"),
                HasSubstr("The columns are \"id\", field 2, field 3, \"b\"; \"#1\" is always"));
    options_.skip_columns = {"6"};
    EXPECT_THAT(refusal(kAnnotated), HasSubstr("there is no column \"6\""));
    options_.skip_columns = {"id"};
    EXPECT_THAT(refusal(kAnnotated), HasSubstr("holds the names of the rows"));
    options_.skip_columns = {"a"};
    EXPECT_THAT(refusal("g\ta\ta\nG1\t1\t2\n"), HasSubstr("Say which by its number: #2, #3."));
}

TEST_F(LayoutOf, TakesANumberBehindAHashForAFieldWhateverTheHeadersAre) {
    constexpr const char* kNumbered = "gene\t\t3\t2\t#2\nG1\tx\t1\t2\t3\nG2\ty\t3\t4\t5\n";
    options_.skip_columns = {"#2"};
    EXPECT_THAT(valuesOf(kNumbered), ElementsAre(2U, 3U, 4U));
    options_.skip_columns = {"2"};
    EXPECT_THAT(valuesOf(kNumbered), ElementsAre(1U, 2U, 4U));
    options_.skip_columns = {"#2", "5"};
    EXPECT_THAT(valuesOf(kNumbered), ElementsAre(2U, 3U));
    options_.skip_columns = {"#6"};
    EXPECT_THAT(refusal(kNumbered), HasSubstr("there is no column \"#6\""));
    options_.skip_columns = {};
    options_.names_column = "#2";
    EXPECT_EQ(layout(kNumbered).names_field, 1U);
}

TEST_F(LayoutOf, TakesNamesFromTheColumnThatIsNamed) {
    options_.names_column = "gene";
    const TableLayout annotated = layout(kAnnotated);
    EXPECT_EQ(annotated.names_field, 1U);
    EXPECT_FALSE(annotated.isValue(0));
    EXPECT_THAT(annotated.notes,
                ElementsAre("in front of the names, and so no values: column \"id\" (field 1)"));
    // All in front of a last column are values.
    options_.names_column = "3";
    EXPECT_THAT(valuesOf("a\tb\tgene\n1\t2\tG1\n"), ElementsAre(0U, 1U));
    // What had the names in a known kind is no value.
    options_.names_column = "NAME";
    EXPECT_THAT(valuesOf("YORF\tNAME\tGWEIGHT\ta\nYAL001C\tTFC3\t1\t2\n"), ElementsAre(3U));
}

TEST_F(LayoutOf, TakesEveryFieldForAValueWithoutNames) {
    options_.has_names = false;
    EXPECT_THAT(valuesOf("a\tb\n1\t2\n3\t4\n"), ElementsAre(0U, 1U));
    options_.has_header = false;
    EXPECT_EQ(layout("1\t2\n3\t4\n").lines_above, 0U);
}

TEST_F(LayoutOf, RefusesARowInThePlaceOfTheHeader) {
    for (const char* const content : {"G0\t0.5\t-1.25\nG1\t1\t2\n",
                                      "YAL001C\t5\t9\nYAL002W\t1\t2\n",
                                      "N_unmapped\t5\t5\nN_multimapping\t1\t2\nYAL001C\t1\t1\n"}) {
        EXPECT_THAT(refusal(content), HasSubstr("m:1: the line in the place of the header"))
            << content;
    }
    options_.has_header = false;
    EXPECT_EQ(refusal("G0\t0.5\t-1.25\nG1\t1\t2\n"), "");
    options_.has_header = true;
    // Only what would be values counts.
    options_.skip_columns = {"2"};
    EXPECT_THAT(refusal("YAL001C\tTFC3\t0.5\t0.1\nYAL002W\tVPS8\t1\t2\n"),
                HasSubstr("looks like a row"));
}

TEST_F(LayoutOf, WarnsOfWhatMayBeARowInThePlaceOfTheHeader) {
    EXPECT_THAT(
        layout("TP53\t137\t582\nRB1\t1\t2\nMYC\t3\t2\n").warnings,
        ElementsAre(":1: the line in the place of the header may be a row (\"TP53\" and numbers), "
                    "and is no row of the map\nIf there is no header, say no-header; if it is the "
                    "header, call its first field \"gene\"."));
    for (const char* const content : {"gene\t0\t10\nRB1\t1\t2\nMYC\t3\t2\n",
                                      "\t0\t10\nRB1\t1\t2\nMYC\t3\t2\n",
                                      "TP53\ta\tb\nRB1\t1\t2\nMYC\t3\t2\n"}) {
        EXPECT_THAT(layout(content).warnings, IsEmpty()) << content;
    }
    options_.has_header = false;
    EXPECT_THAT(layout("TP53\t137\t582\nRB1\t1\t2\nMYC\t3\t2\n").warnings, IsEmpty());
}

TEST_F(LayoutOf, RefusesDelimitersThatSeemToStandWithinFields) {
    EXPECT_THAT(refusal("g,a,b\nG1,0,5,1,5\nG2,1,5,2,5\n"),
                HasSubstr("the header has 3 fields and the rows have 5, as if decimal commas"));
    EXPECT_THAT(
        refusal("gene,a\nG1,0,5\nG2,1,5\n"),
        HasSubstr("the header has 2 fields and the rows have 3, though \"gene\" heads the"));
    // Of one line among others it is known which.
    EXPECT_THAT(refusal("gene,a\nG1,0\n# x\nG2,1,5\nG3,1,5\n"),
                HasSubstr("m:4: the line has 3 fields and the header 2\n"));
    EXPECT_EQ(refusal("WT,mutant\nG1,0,5\nG2,1,5\n"), "");
    EXPECT_THAT(refusal("gene   a   b\nG1   1   2\n"), HasSubstr("several blanks stand between"));
    options_.delimiter = ' ';
    EXPECT_EQ(refusal("gene a b c\nG1 1  2\n"), "");
}

}  // namespace
}  // namespace ovik
