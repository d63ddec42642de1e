#include "annotation/gene_lookup.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "annotation/gene_names.h"

namespace ovik {
namespace {

/// The systematic name of the gene that a name is mapped to.
std::string mapped(std::string_view name) {
    const NamedGene found = identify_gene(name);
    EXPECT_EQ(found.match, NameMatch::Mapped) << name;
    EXPECT_EQ(found.gene, find_systematic_gene(found.systematic)) << name;
    return std::string(found.systematic);
}

NameMatch match_of(std::string_view name) {
    return identify_gene(name).match;
}

TEST(IdentifyGene, FindsEveryListedNameDirectly) {
    for (const GeneEntry& gene : gene_list()) {
        const NamedGene found = identify_gene(gene.name);
        EXPECT_EQ(found.match, NameMatch::Listed) << gene.name;
        EXPECT_EQ(found.gene, find_gene(gene.name)) << gene.name;
    }
}

TEST(IdentifyGene, FindsEverySystematicName) {
    for (const GeneEntry& gene : gene_list()) {
        const NamedGene found = identify_gene(gene.systematic);
        EXPECT_EQ(found.gene, &gene) << gene.systematic;
        EXPECT_EQ(found.systematic, gene.systematic);
    }
}

TEST(IdentifyGene, MapsLetterCase) {
    EXPECT_EQ(mapped("cdc28"), "YBR160W");
    EXPECT_EQ(mapped("Cdc28"), "YBR160W");
    EXPECT_EQ(mapped("ybr160w"), "YBR160W");
    EXPECT_EQ(mapped("arg5,6"), "YER069W");
}

TEST(IdentifyGene, MapsTheSuffixOfProteins) {
    EXPECT_EQ(mapped("Tyr1p"), "YBR166C");
    EXPECT_EQ(mapped("TYR1P"), "YBR166C");
    EXPECT_EQ(mapped("Ybr166cp"), "YBR166C");
    EXPECT_EQ(match_of("Tyr1pp"), NameMatch::Unknown);
    EXPECT_EQ(match_of("p"), NameMatch::Unknown);
}

TEST(IdentifyGene, MapsStandardNamesOfOtherReleases) {
    EXPECT_EQ(mapped("SDH5"), "YOL071W");
    EXPECT_EQ(mapped("sdh5p"), "YOL071W");
    EXPECT_EQ(mapped("MF(ALPHA)1"), "YPL187W");
    EXPECT_EQ(mapped("MF(ALPHA)2"), "YGL089C");
}

TEST(IdentifyGene, TakesNoneOfSeveralGenes) {
    // The names DDI2 and DDI3 were exchanged between two releases.
    for (const char* const name : {"ddi2", "Ddi3p", "mf", "MFp"}) {
        const NamedGene found = identify_gene(name);
        EXPECT_EQ(found.match, NameMatch::Ambiguous) << name;
        EXPECT_EQ(found.gene, nullptr) << name;
        EXPECT_EQ(found.systematic, "") << name;
    }
    EXPECT_EQ(identify_gene("DDI2").systematic, "YFL061W");
    EXPECT_EQ(identify_gene("MF").match, NameMatch::Listed);
    EXPECT_EQ(identify_gene("MF").systematic, "");
}

TEST(IdentifyGene, KnowsNothingOfOtherNames) {
    for (const char* const name : {"", " ", "nonsense", "CDC28 ", "CDC28/YBR160W", "1", "TP53"}) {
        EXPECT_EQ(match_of(name), NameMatch::Unknown) << name;
        EXPECT_EQ(identify_gene(name).gene, nullptr) << name;
    }
}

TEST(GenesCalled, AreAllThatHaveTheName) {
    EXPECT_EQ(genes_called("CDC28").size(), 1U);
    ASSERT_EQ(genes_called("mf").size(), 2U);
    EXPECT_LT(genes_called("mf").front(), genes_called("mf").back());
    EXPECT_EQ(genes_called("Ddi2").size(), 2U);
    EXPECT_TRUE(genes_called("").empty());
}

}  // namespace
}  // namespace ovik
