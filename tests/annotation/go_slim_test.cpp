#include "annotation/go_slim.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "annotation/gene_names.h"

namespace ovik {
namespace {

using testing::Contains;
using testing::Not;

/// The names of the terms of a gene.
std::vector<std::string> term_names_of(std::string_view systematic) {
    std::vector<std::string> names;
    for (const std::uint16_t term : go_terms_of(*find_systematic_gene(systematic))) {
        names.emplace_back(go_terms()[term].name);
    }
    return names;
}

TEST(GoSlim, HasTermsInTheOrderOfTheirIdentifiersWithoutRoots) {
    const auto terms = go_terms();
    EXPECT_EQ(terms.size(), 681U);
    EXPECT_TRUE(std::is_sorted(terms.begin(), terms.end(), [](const auto& one, const auto& other) {
        return std::string_view(one.id) < other.id;
    }));
    std::set<std::string_view> names;
    for (const GoTerm& term : terms) {
        names.insert(term.name);
        EXPECT_NE(std::string_view("PFC").find(term.aspect), std::string_view::npos) << term.id;
    }
    EXPECT_EQ(names.size(), terms.size());
    for (const char* const root :
         {"biological_process", "molecular_function", "cellular_component"}) {
        EXPECT_THAT(names, Not(Contains(root)));
    }
}

TEST(GoSlim, KnowsWhatGenesDo) {
    EXPECT_THAT(term_names_of("YBR160W"), Contains("regulation of cell cycle"));
    EXPECT_THAT(term_names_of("YLL026W"), Contains("protein folding"));
    EXPECT_THAT(term_names_of("Q0045"), Contains("mitochondrial respiratory chain complex IV"));
    EXPECT_TRUE(term_names_of("YAL069W").empty());
}

TEST(GoSlim, GivesEachGeneItsTermsInOrderAndOnce) {
    std::size_t annotated = 0;
    std::set<std::uint16_t> used;
    for (const GeneEntry& gene : gene_list()) {
        const auto terms = go_terms_of(gene);
        annotated += terms.empty() ? 0U : 1U;
        used.insert(terms.begin(), terms.end());
        EXPECT_TRUE(std::adjacent_find(terms.begin(), terms.end(), std::greater_equal<>()) ==
                    terms.end())
            << gene.systematic;
    }
    EXPECT_GT(annotated, 5400U);
    EXPECT_LE(annotated, 5491U);
    EXPECT_EQ(used.size(), go_terms().size());
}

}  // namespace
}  // namespace ovik
