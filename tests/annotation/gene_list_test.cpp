#include "annotation/gene_list.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(GeneList, IsInGenomeOrder) {
    const auto genes = gene_list();
    EXPECT_STREQ(genes.front().systematic, "YAL069W");
    EXPECT_EQ(genes.back().systematic[0], 'Q');
    // Chromosomes in order, mitochondrial genes last.
    EXPECT_TRUE(std::is_sorted(genes.begin(), genes.end(), [](const auto& a, const auto& b) {
        const auto chromosome = [](const GeneEntry& gene) {
            return gene.systematic[0] == 'Q' ? 'Z' : gene.systematic[1];
        };
        return chromosome(a) < chromosome(b);
    }));
}

TEST(GeneList, HoldsBothMatingFactorsAsMf) {
    const auto genes = gene_list();
    EXPECT_EQ(std::count_if(genes.begin(),
                            genes.end(),
                            [](const auto& gene) {
                                return std::string(gene.name) == "MF" &&
                                       std::string(gene.function) == "NULL";
                            }),
              2);
}

TEST(GeneList, HasSystematicNamesOfOneGeneEach) {
    std::set<std::string_view> systematic;
    for (const GeneEntry& gene : gene_list()) {
        EXPECT_TRUE(systematic.insert(gene.systematic).second) << gene.systematic;
    }
}

TEST(GeneList, HasIdentifiersOfOneGeneEach) {
    std::set<std::string_view> identifiers;
    for (const GeneEntry& gene : gene_list()) {
        const std::string_view identifier = gene.sgd_id;
        EXPECT_TRUE(identifiers.insert(identifier).second) << identifier;
        EXPECT_EQ(identifier.size(), 10U) << identifier;
        EXPECT_EQ(identifier.front(), 'S') << identifier;
    }
}

TEST(GeneAliases, AreInByteOrderAndNamesOfListedGenes) {
    const auto aliases = gene_aliases();
    EXPECT_FALSE(aliases.empty());
    EXPECT_TRUE(
        std::is_sorted(aliases.begin(), aliases.end(), [](const GeneAlias& a, const GeneAlias& b) {
            return std::string_view(a.alias) < std::string_view(b.alias);
        }));
    std::map<std::string_view, std::string_view> names;
    for (const GeneEntry& gene : gene_list()) {
        names.emplace(gene.systematic, gene.name);
    }
    for (const GeneAlias& alias : aliases) {
        EXPECT_EQ(names[alias.systematic], alias.name) << alias.alias;
        EXPECT_STRNE(alias.alias, alias.name);
    }
}

TEST(GeneAliases, HaveTheNamesThatWentFromOneGeneToAnother) {
    std::set<std::string_view> listed;
    for (const GeneEntry& gene : gene_list()) {
        listed.insert(gene.name);
    }
    std::vector<std::string> exchanged;
    for (const GeneAlias& alias : gene_aliases()) {
        if (listed.count(alias.alias) > 0) {
            exchanged.emplace_back(std::string(alias.alias) + " " + alias.name);
        }
    }
    EXPECT_EQ(exchanged, (std::vector<std::string>{"DDI2 DDI3", "DDI3 DDI2"}));
}

}  // namespace
}  // namespace ovik
