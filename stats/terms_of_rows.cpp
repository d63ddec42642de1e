#include "stats/terms_of_rows.h"

#include <cstdint>
#include <map>

#include "annotation/gene_lookup.h"
#include "annotation/go_slim.h"

namespace ovik {

namespace {

/// The gene of each row; null for a row of none.
std::vector<const GeneEntry*> genes_of(std::span<const std::string> names,
                                       std::span<const std::string> functions) {
    std::vector<const GeneEntry*> genes;
    genes.reserve(names.size());
    for (std::size_t row = 0; row < names.size(); ++row) {
        const NamedGene named = identify_gene(names[row]);
        const bool is_of_gene = !named.systematic.empty() && functions[row] == named.gene->function;
        genes.push_back(is_of_gene ? named.gene : nullptr);
    }
    return genes;
}

/// The places in `RowTerms::list` of the terms that any of the genes has, by those in `go_terms()`.
std::map<std::size_t, std::size_t> places_of_terms(const std::vector<const GeneEntry*>& genes) {
    std::map<std::size_t, std::size_t> places;
    for (const GeneEntry* const gene : genes) {
        for (const std::uint16_t term :
             gene == nullptr ? std::span<const std::uint16_t>() : go_terms_of(*gene)) {
            places.emplace(term, 0);
        }
    }
    std::size_t next = 0;
    for (auto& [term, place] : places) {
        place = next++;
    }
    return places;
}

}  // namespace

RowTerms terms_of_rows(std::span<const std::string> names, std::span<const std::string> functions) {
    const std::vector<const GeneEntry*> genes = genes_of(names, functions);
    const std::map<std::size_t, std::size_t> places = places_of_terms(genes);
    RowTerms terms;
    if (places.empty()) {
        return terms;
    }
    for (const auto& [term, place] : places) {
        const GoTerm& known = go_terms()[term];
        terms.list.push_back({known.id, known.name, known.aspect});
    }
    std::map<const GeneEntry*, std::size_t> first_rows;
    terms.of_rows.resize(names.size());
    for (std::size_t row = 0; row < genes.size(); ++row) {
        if (genes[row] == nullptr) {
            continue;
        }
        for (const std::uint16_t term : go_terms_of(*genes[row])) {
            terms.of_rows[row].push_back(places.at(term));
        }
        const auto [first, is_first] = first_rows.emplace(genes[row], row);
        if (!is_first) {
            terms.repeated.emplace_back(row, first->second);
        }
    }
    return terms;
}

}  // namespace ovik
