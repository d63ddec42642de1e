#include "annotation/gene_func_map.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "annotation/gene_list.h"
#include "annotation/gene_table.h"

namespace ovik {
namespace {

/// A fresh table: the global one grows by the look-ups of other tests.
class GeneFuncMap : public testing::Test {
  protected:
    std::map<std::string, std::string> table_ = make_gene_table();

    [[nodiscard]] std::size_t keysLike(const char* pattern) const {
        const auto has_form = testing::Matches(testing::MatchesRegex(pattern));
        return static_cast<std::size_t>(std::count_if(
            table_.begin(), table_.end(), [&](const auto& gene) { return has_form(gene.first); }));
    }

    [[nodiscard]] std::size_t genesThat(const std::string& function) const {
        return static_cast<std::size_t>(
            std::count_if(table_.begin(), table_.end(), [&](const auto& gene) {
                return gene.second == function;
            }));
    }
};

TEST_F(GeneFuncMap, HasAllGenes) {
    EXPECT_EQ(gene_list().size(), 6561U);
    EXPECT_EQ(table_.size(), 6560U);
    EXPECT_EQ(keysLike("Y[A-P][LR][0-9]{3}[WC](-[A-Z])?"), 1528U);
    EXPECT_EQ(keysLike("Q[0-9]{4}"), 10U);
    EXPECT_EQ(table_.size() - 1528 - 10, 5022U);
}

TEST_F(GeneFuncMap, HasTheDocumentedFunctions) {
    EXPECT_EQ(genesThat("NULL"), 879U);
    EXPECT_EQ(genesThat("Putative protein of unknown function"), 489U);
    EXPECT_EQ(genesThat("Protein of unknown function"), 267U);
    std::set<std::string> distinct;
    for (const auto& [name, function] : table_) {
        EXPECT_LE(name.size(), 9U) << name;
        EXPECT_LE(function.size(), 70U) << name;
        EXPECT_NE(function, "") << name;
        distinct.insert(function);
    }
    EXPECT_EQ(distinct.size(), 3870U);
}

TEST_F(GeneFuncMap, TellsWhatGenesDo) {
    const std::map<std::string, std::string> expected = {
        {"YAL069W", "NULL"},
        {"PAU8", "Protein of unknown function"},
        {"YAL067W-A", "Putative protein of unknown function"},
        {"SEO1", "Putative permease"},
        {"FLO9", "Lectin-like protein with similarity to Flo1p"},
        {"BDH2", "Putative medium-chain alcohol dehydrogenase with similarity to BDH1"},
        {"ECM1", "Pre-ribosomal factor involved in 60S ribosomal protein subunit export"},
        {"CDC28", "Cyclin-dependent kinase (CDK) catalytic subunit"},
        {"SIR2", "Conserved NAD+ dependent histone deacetylase of the Sirtuin family"},
        {"URA3", "Orotidine-5'-phosphate (OMP) decarboxylase"},
        {"TUB1", "Alpha-tubulin"},
        {"RPL3", "Ribosomal 60S subunit protein L3"},
        {"MF", "NULL"},
        {"Q0255", "Maturase-like protein"},
        {"COX3", "Subunit III of cytochrome c oxidase (Complex IV)"}};
    for (const auto& [name, function] : expected) {
        EXPECT_EQ(table_[name], function) << name;
    }
}

TEST_F(GeneFuncMap, HoldsNamesWithPunctuationAsTheyAre) {
    for (const char* name : {"IMP2'", "YRF1-1", "YAL068W-A"}) {
        EXPECT_EQ(table_.count(name), 1U) << name;
    }
}

TEST_F(GeneFuncMap, InsertsWhatIsLookedUpInVain) {
    EXPECT_EQ(table_["XYZ1"], "");
    EXPECT_EQ(table_.size(), 6561U);
    EXPECT_EQ(table_["ura3"], "");
    EXPECT_EQ(table_["ura3"], "");
    EXPECT_EQ(table_.size(), 6562U);
    EXPECT_EQ(table_["URA3"], "Orotidine-5'-phosphate (OMP) decarboxylase");
}

TEST(GeneFuncMapGlobal, IsFilledBeforeMain) {
    EXPECT_GE(gene_func_map.size(), 6560U);
    EXPECT_EQ(gene_func_map["TUB1"], "Alpha-tubulin");
    EXPECT_EQ(WHITESPACE, " \n\r\t\f\v");
    EXPECT_GT(now, 0);
    EXPECT_LE(now, std::time(nullptr));
}

}  // namespace
}  // namespace ovik
