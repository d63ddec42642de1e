#include "annotation/enrichment.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "annotation/go_slim.h"
#include "annotation/overlap_chance.h"

namespace ovik {

namespace {

/// Terms of fewer genes are not tested: one gene is not together with others.
constexpr std::size_t kFewestGenes = 2;

using Genes = std::vector<const GeneEntry*>;

/// Each gene once, in the order of the list.
Genes distinct(std::span<const GeneEntry* const> genes) {
    Genes once(genes.begin(), genes.end());
    // The list is one array, so the order of addresses is that of the list.
    std::sort(once.begin(), once.end());
    once.erase(std::unique(once.begin(), once.end()), once.end());
    return once;
}

/// Takes the genes out that are not as they should be.
///
/// @return these genes
template <typename Condition>
Genes take_unless(Genes& genes, const Condition& is_kept) {
    const auto others = std::stable_partition(genes.begin(), genes.end(), is_kept);
    Genes taken(others, genes.end());
    genes.erase(others, genes.end());
    return taken;
}

bool has_terms(const GeneEntry* gene) {
    return !go_terms_of(*gene).empty();
}

/// The genes of each term.
std::vector<Genes> members_of_terms(const Genes& genes) {
    std::vector<Genes> members(go_terms().size());
    for (const GeneEntry* const gene : genes) {
        for (const std::uint16_t term : go_terms_of(*gene)) {
            members[term].push_back(gene);
        }
    }
    return members;
}

bool is_less_likely(const EnrichedTerm& one, const EnrichedTerm& other) {
    return std::tuple(one.p, other.hits, one.term) < std::tuple(other.p, one.hits, other.term);
}

void add_rates(Enrichment& enrichment) {
    std::vector<double> chances;
    for (const EnrichedTerm& term : enrichment.terms) {
        chances.push_back(term.p);
    }
    const std::vector<double> rates = false_discovery_rates(chances, enrichment.tested);
    for (std::size_t i = 0; i < rates.size(); ++i) {
        enrichment.terms[i].q = rates[i];
    }
}

}  // namespace

Enrichment enrich(std::span<const GeneEntry* const> genes,
                  std::span<const GeneEntry* const> background) {
    Genes from = distinct(background);
    Genes chosen = distinct(genes);
    Enrichment enrichment;
    enrichment.outside = take_unless(chosen, [&from](const GeneEntry* gene) {
        return std::binary_search(from.begin(), from.end(), gene);
    });
    enrichment.without_terms = take_unless(chosen, has_terms);
    std::erase_if(from, [](const GeneEntry* gene) { return !has_terms(gene); });
    enrichment.drawn = chosen.size();
    enrichment.total = from.size();
    const std::vector<Genes> all = members_of_terms(from);
    std::vector<Genes> hits = members_of_terms(chosen);
    for (std::size_t term = 0; term < all.size(); ++term) {
        const Overlap overlap{hits[term].size(), all[term].size(), chosen.size(), from.size()};
        if (overlap.size < kFewestGenes) {
            continue;
        }
        ++enrichment.tested;
        if (overlap.hits > 0) {
            const double fold = static_cast<double>(overlap.hits * overlap.total) /
                                static_cast<double>(overlap.size * overlap.drawn);
            enrichment.terms.push_back({term,
                                        overlap.hits,
                                        overlap.size,
                                        fold,
                                        overlap_chance(overlap),
                                        1,
                                        std::move(hits[term])});
        }
    }
    std::sort(enrichment.terms.begin(), enrichment.terms.end(), is_less_likely);
    add_rates(enrichment);
    return enrichment;
}

Enrichment enrich(std::span<const GeneEntry* const> genes) {
    Genes background;
    for (const GeneEntry& gene : gene_list()) {
        background.push_back(&gene);
    }
    return enrich(genes, background);
}

}  // namespace ovik
