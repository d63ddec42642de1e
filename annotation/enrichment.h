#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "annotation/gene_list.h"
#include "util/api.h"

namespace ovik {

/// How a list of genes overlaps with those of a term.
struct EnrichedTerm {
    /// The term, as its place in `go_terms()`.
    std::size_t term = 0;
    /// Genes of the list that have the term.
    std::size_t hits = 0;
    /// Genes of the background that have it.
    std::size_t size = 0;
    /// `hits` as a multiple of what chance gives on average.
    double fold = 0;
    /// The chance of so many hits or more, 0 to 1: the upper tail of the hypergeometric
    /// distribution.
    double p = 1;
    /// The false discovery rate over all terms that were tested (Benjamini and Hochberg), p to 1.
    double q = 1;
    /// The hits, in the order of `gene_list()`.
    std::vector<const GeneEntry*> genes;
};

/// What a list of genes has more of than chance gives.
struct Enrichment {
    /// Terms with at least one hit, the least likely first; of equals those with more hits, then in
    /// the order of `go_terms()`.
    std::vector<EnrichedTerm> terms;
    /// How many terms were tested: those of at least two genes of the background.
    std::size_t tested = 0;
    /// How many genes of the list are annotated and in the background.
    std::size_t drawn = 0;
    /// How many genes of the background are annotated.
    std::size_t total = 0;
    /// Genes of the list that have no term, in the order of `gene_list()`.
    std::vector<const GeneEntry*> without_terms;
    /// Genes of the list that are not in the background, in the same order.
    std::vector<const GeneEntry*> outside;
};

/// Tests which terms a list of genes has more of than chance gives. Genes without any term are left
/// out on both sides, since nothing is known of them; a gene counts once.
///
/// @param genes       entries of `gene_list()`; those that are not in the background are left out
/// @param background  entries of it, which the genes might have been drawn from
OVIK_API Enrichment enrich(std::span<const GeneEntry* const> genes,
                           std::span<const GeneEntry* const> background);

/// The same with all genes of the list as background.
OVIK_API Enrichment enrich(std::span<const GeneEntry* const> genes);

}  // namespace ovik
