#include "tools/row_genes.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Names = std::vector<std::string>;

std::string line_of(const Names& names) {
    return found_genes_line(look_up_rows(names));
}

std::string warning_of(const Names& names) {
    return few_genes_warning(look_up_rows(names), names);
}

TEST(LookUpRows, FindsGenesByAnyOfTheirNames) {
    const RowGenes rows =
        look_up_rows({"TUB1", "Tyr1p", "yal069w", "YBR160W", "ddi2", "probe 7", "MF"});
    EXPECT_THAT(systematic_names_of(rows),
                ElementsAre("YML085C", "YBR166C", "YAL069W", "YBR160W", "", "", ""));
    const Names functions = functions_of(rows);
    EXPECT_EQ(functions[0], "Alpha-tubulin");
    EXPECT_EQ(functions[1], "Prephenate dehydrogenase involved in tyrosine biosynthesis");
    EXPECT_EQ(functions[4], "");
    EXPECT_EQ(functions[6], "NULL");
    EXPECT_EQ(rows.listed, 2U);
    EXPECT_EQ(rows.mapped, 3U);
    EXPECT_EQ(rows.ambiguous, 1U);
    EXPECT_THAT(rows.first_missing, ElementsAre("ddi2", "probe 7"));
}

TEST(OtherNames, AreThoseOfTheTableWhereRowsHaveOthers) {
    const Names names = {"TUB1", "Tyr1p", "yal069w", "ddi2"};
    EXPECT_THAT(other_names_of(look_up_rows(names), names), ElementsAre("", "TYR1", "YAL069W", ""));
    EXPECT_TRUE(other_names_of(look_up_rows({"TUB1", "x"}), {"TUB1", "x"}).empty());
}

TEST(RowsWithoutGenes, HaveNothingToSay) {
    EXPECT_THAT(functions_of(rows_without_genes(2)), ElementsAre("", ""));
    EXPECT_THAT(systematic_names_of(rows_without_genes(2)), ElementsAre("", ""));
    EXPECT_TRUE(other_names_of(rows_without_genes(1), {"TUB1"}).empty());
}

TEST(RenameToStandard, TakesTheListedNameOfEveryGene) {
    Names names = {"YBR160W", "YAL069W", "CDC28", "cdc28", "Tyr1p", "ddi2", "probe 7", ""};
    rename_to_standard(names);
    EXPECT_THAT(names,
                ElementsAre("CDC28", "YAL069W", "CDC28", "CDC28", "TYR1", "ddi2", "probe 7", ""));
}

TEST(FoundGenesLine, NamesTheFirstFewThatAreMissing) {
    EXPECT_EQ(line_of({}), "Gene table: 0 of 0 rows found");
    EXPECT_EQ(line_of({"CDC28", "TUB1"}), "Gene table: 2 of 2 rows found");
    EXPECT_EQ(line_of({"a1x", "CDC28", "b2x", "c3x"}),
              "Gene table: 1 of 4 rows found; not found: a1x, b2x, c3x");
    EXPECT_EQ(line_of({"a1x", "b2x", "c3x", "d4x", "CDC28"}),
              "Gene table: 1 of 5 rows found; not found: a1x, b2x, c3x, ...");
    EXPECT_EQ(line_of({"CDC28", "", "a1x"}),
              "Gene table: 1 of 3 rows found; not found: row 2, a1x");
}

TEST(FoundGenesLine, CountsWhatWasMapped) {
    EXPECT_EQ(line_of({"CDC28", "tub1", "Tyr1p"}),
              "Gene table: 3 of 3 rows found, 1 directly and 2 by another name");
    EXPECT_EQ(line_of({"CDC28", "ddi2"}),
              "Gene table: 1 of 2 rows found; 1 name of several genes; not found: ddi2");
    EXPECT_THAT(line_of({"mf", "ddi2"}), HasSubstr("; 2 names of several genes; "));
}

TEST(KindOfNames, IsOfGenesIfTheTableKnowsHalfOfThem) {
    EXPECT_EQ(kind_of_names({"CDC28", "a1x"}), RowNames::AsInFile);
    EXPECT_EQ(kind_of_names({"CDC28", "a1x", "b2x"}), RowNames::Other);
}

TEST(FewGenesWarning, IsForFewerThanHalfOfTheRows) {
    EXPECT_EQ(warning_of({}), "");
    EXPECT_EQ(warning_of({"cdc28", "a1x"}), "");
    const std::string warning = warning_of({"YBR160W", "a1x", "b2x"});
    EXPECT_THAT(warning, HasSubstr("knows 1 of 3 rows, fewer than half: not a1x, b2x\n"));
    EXPECT_THAT(warning, HasSubstr("--names other"));
    EXPECT_THAT(warning_of({"a1x", "b2x", "c3x", "d4x"}), HasSubstr("not a1x, b2x, c3x, ...\n"));
}

TEST(FewGenesWarning, IsNotForRowsThatHaveNoNames) {
    EXPECT_EQ(warning_of({"1", "2", "3"}), "");
    EXPECT_NE(warning_of({"2", "1", "3"}), "");
}

}  // namespace
}  // namespace ovik::tool
