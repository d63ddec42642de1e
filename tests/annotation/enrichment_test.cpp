#include "annotation/enrichment.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "annotation/gene_names.h"
#include "annotation/go_slim.h"
#include "annotation/overlap_chance.h"

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Genes = std::vector<const GeneEntry*>;

Genes genes_of(std::initializer_list<const char*> names) {
    Genes genes;
    for (const char* const name : names) {
        genes.push_back(find_gene(name));
    }
    return genes;
}

std::string id_of(const EnrichedTerm& term) {
    return go_terms()[term.term].id;
}

bool has_term(const GeneEntry* gene, std::size_t term) {
    const auto terms = go_terms_of(*gene);
    return std::find(terms.begin(), terms.end(), term) != terms.end();
}

/// Heat shock proteins, twice the same, and a gene of which nothing is known.
const Genes kChaperones =
    genes_of({"SSA1", "HSP104", "HSP82", "HSC82", "SSA2", "HSP104", "YAL069W"});

TEST(Enrichment, SaysWhatChaperonesDo) {
    const Enrichment enrichment = enrich(kChaperones);
    EXPECT_EQ(enrichment.drawn, 5U);
    EXPECT_GT(enrichment.total, 5400U);
    EXPECT_THAT(enrichment.without_terms, ElementsAre(find_gene("YAL069W")));
    EXPECT_THAT(enrichment.outside, IsEmpty());
    const EnrichedTerm& best = enrichment.terms.front();
    EXPECT_EQ(id_of(best), "GO:0051082") << "unfolded protein binding";
    EXPECT_EQ(best.hits, 5U);
    EXPECT_EQ(best.genes.size(), 5U);
    EXPECT_LT(best.q, 1e-6);
}

TEST(Enrichment, CountsEachTermInListAndBackground) {
    const Enrichment enrichment = enrich(kChaperones);
    for (const EnrichedTerm& term : enrichment.terms) {
        const auto has = [&term](const GeneEntry* gene) { return has_term(gene, term.term); };
        const auto size = std::count_if(gene_list().begin(),
                                        gene_list().end(),
                                        [&has](const auto& gene) { return has(&gene); });
        EXPECT_EQ(term.size, static_cast<std::size_t>(size));
        EXPECT_EQ(term.genes.size(), term.hits);
        EXPECT_TRUE(std::all_of(term.genes.begin(), term.genes.end(), has));
        EXPECT_EQ(term.p, overlap_chance({term.hits, term.size, 5, enrichment.total}));
        EXPECT_DOUBLE_EQ(
            term.fold,
            static_cast<double>(term.hits) / 5 /
                (static_cast<double>(term.size) / static_cast<double>(enrichment.total)));
        EXPECT_LE(term.p, term.q);
    }
    EXPECT_TRUE(std::is_sorted(enrichment.terms.begin(),
                               enrichment.terms.end(),
                               [](const auto& one, const auto& other) { return one.p < other.p; }));
}

TEST(Enrichment, TestsTermsOfTwoGenesOrMore) {
    // Two cyclins and an enolase: the terms that two of them share are tested, whatever has hits.
    const Genes background = genes_of({"CLN1", "CLN2", "ENO1"});
    const Enrichment enrichment = enrich(genes_of({"CLN1"}), background);
    std::size_t shared = 0;
    for (std::size_t term = 0; term < go_terms().size(); ++term) {
        const auto size = std::count_if(background.begin(),
                                        background.end(),
                                        [&](const auto* gene) { return has_term(gene, term); });
        shared += size >= 2 ? 1U : 0U;
    }
    EXPECT_GT(shared, 0U);
    EXPECT_EQ(enrichment.tested, shared);
    EXPECT_EQ(enrichment.total, 3U);
    for (const EnrichedTerm& term : enrichment.terms) {
        EXPECT_GE(term.size, 2U);
    }
}

TEST(Enrichment, LeavesOutGenesThatAreNotInTheBackground) {
    const Genes background = genes_of({"CLN1", "CLN2", "ENO1", "ENO2", "YAL069W"});
    const Enrichment enrichment = enrich(genes_of({"HSP104", "CLN2", "CLN1"}), background);
    EXPECT_THAT(enrichment.outside, ElementsAre(find_gene("HSP104")));
    EXPECT_EQ(enrichment.drawn, 2U);
    EXPECT_EQ(enrichment.total, 4U);
}

TEST(Enrichment, OfNoGenesIsEmpty) {
    for (const Enrichment& none :
         {enrich({}), enrich(genes_of({"YAL069W"})), enrich(kChaperones, {})}) {
        EXPECT_THAT(none.terms, IsEmpty());
        EXPECT_EQ(none.drawn, 0U);
    }
}

}  // namespace
}  // namespace ovik
