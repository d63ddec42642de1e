#include "annotation/gene_lookup.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "annotation/gene_names.h"

namespace ovik {

namespace {

/// The text with ASCII letters in upper case.
std::string upper_case(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return result;
}

using GeneIndex = std::unordered_multimap<std::string, const GeneEntry*>;

/// From every name of a gene, in upper case, to the gene.
GeneIndex index_names() {
    GeneIndex index;
    for (const GeneEntry& gene : gene_list()) {
        index.emplace(upper_case(gene.name), &gene);
        index.emplace(upper_case(gene.systematic), &gene);
    }
    for (const GeneAlias& alias : gene_aliases()) {
        index.emplace(upper_case(alias.alias), find_systematic_gene(alias.systematic));
    }
    return index;
}

/// The name without the mark of a protein behind it; empty if it has none.
std::string_view without_protein_mark(std::string_view name) {
    const bool has_mark = !name.empty() && (name.back() == 'p' || name.back() == 'P');
    return has_mark ? name.substr(0, name.size() - 1) : std::string_view();
}

}  // namespace

std::vector<const GeneEntry*> genes_called(std::string_view name) {
    static const GeneIndex index = index_names();
    std::vector<const GeneEntry*> genes;
    const auto [first, last] = index.equal_range(upper_case(name));
    for (auto entry = first; entry != last; ++entry) {
        genes.push_back(entry->second);
    }
    // The list is one array, so the order of addresses is that of the list.
    std::sort(genes.begin(), genes.end());
    genes.erase(std::unique(genes.begin(), genes.end()), genes.end());
    return genes;
}

NamedGene identify_gene(std::string_view name) {
    std::vector<const GeneEntry*> genes = genes_called(name);
    if (const GeneEntry* const listed = find_gene(name)) {
        const auto is_listed_so = [name](const GeneEntry* gene) { return gene->name == name; };
        const bool is_one = std::count_if(genes.begin(), genes.end(), is_listed_so) == 1;
        return {NameMatch::Listed, listed, is_one ? listed->systematic : ""};
    }
    if (genes.empty()) {
        genes = genes_called(without_protein_mark(name));
    }
    if (genes.size() == 1) {
        return {NameMatch::Mapped, genes.front(), genes.front()->systematic};
    }
    return {genes.empty() ? NameMatch::Unknown : NameMatch::Ambiguous, nullptr, {}};
}

}  // namespace ovik
