#include "annotation/gene_names.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using Names = std::vector<std::string>;

TEST(FindGene, TakesTheExactNameOnly) {
    ASSERT_NE(find_gene("CDC28"), nullptr);
    EXPECT_STREQ(find_gene("CDC28")->systematic, "YBR160W");
    EXPECT_EQ(find_gene("cdc28"), nullptr);
    EXPECT_EQ(find_gene("YBR160W"), nullptr);
    EXPECT_EQ(find_gene(""), nullptr);
}

TEST(FindGene, TakesTheFirstOfEqualNames) {
    EXPECT_STREQ(find_gene("MF")->systematic, "YGL089C");
}

TEST(FindSystematicGene, TellsGenesOfEqualNamesApart) {
    EXPECT_STREQ(find_systematic_gene("YPL187W")->systematic, "YPL187W");
    EXPECT_STREQ(find_systematic_gene("YPL187W")->name, "MF");
    EXPECT_EQ(find_systematic_gene("MF"), nullptr);
}

TEST(StandardGeneName, IsThatOfTheSystematicName) {
    EXPECT_EQ(standard_gene_name("YBR160W"), "CDC28");
    EXPECT_EQ(standard_gene_name("YAL069W"), "");
    EXPECT_EQ(standard_gene_name("CDC28"), "");
    EXPECT_EQ(standard_gene_name("nonsense"), "");
}

TEST(SuggestGeneNames, KnowsOtherCaseSystematicNamesAndAliases) {
    EXPECT_EQ(suggest_gene_names("cdc28"), Names{"CDC28"});
    EXPECT_EQ(suggest_gene_names("YBR160W"), Names{"CDC28"});
    EXPECT_EQ(suggest_gene_names("ybr160w"), Names{"CDC28"});
    EXPECT_EQ(suggest_gene_names("yal069w"), Names{"YAL069W"});
    EXPECT_EQ(suggest_gene_names("DFP3"), Names{"YCR007C"});
    EXPECT_EQ(suggest_gene_names("MF(ALPHA)1"), Names{"MF"});
    EXPECT_EQ(suggest_gene_names("tyr1p"), Names{"TYR1"});
}

TEST(SuggestGeneNames, HasNothingForTheNameItselfAndForNonsense) {
    EXPECT_EQ(suggest_gene_names("CDC28"), Names{});
    EXPECT_EQ(suggest_gene_names("nonsense"), Names{});
}

TEST(AliasesOfGene, AreTheNamesOfOtherReleases) {
    EXPECT_THAT(aliases_of_gene("YLR065C"), testing::ElementsAre("SND2"));
    EXPECT_THAT(aliases_of_gene("YPL187W"), testing::ElementsAre("MF(ALPHA)1"));
    EXPECT_THAT(aliases_of_gene("YBR160W"), testing::IsEmpty());
    EXPECT_THAT(aliases_of_gene("ENV10"), testing::IsEmpty());
    EXPECT_THAT(aliases_of_gene(""), testing::IsEmpty());
}

}  // namespace
}  // namespace ovik
