#include "annotation/gene_lookup.h"

#include <algorithm>
#include <string>
#include <utility>

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

/// A name of a gene in upper case, and the gene.
using Naming = std::pair<std::string, const GeneEntry*>;

/// Every name of every gene in byte order; those of one name in the order of the list, each once.
std::vector<Naming> sorted_names() {
    std::vector<Naming> names;
    names.reserve(2 * gene_list().size() + gene_aliases().size());
    for (const GeneEntry& gene : gene_list()) {
        names.emplace_back(upper_case(gene.name), &gene);
        names.emplace_back(upper_case(gene.systematic), &gene);
    }
    for (const GeneAlias& alias : gene_aliases()) {
        names.emplace_back(upper_case(alias.alias), find_systematic_gene(alias.systematic));
    }
    // The list is one array, so the order of addresses is that of the list.
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

/// The name without the mark of a protein behind it; empty if it has none.
std::string_view without_protein_mark(std::string_view name) {
    const bool has_mark = !name.empty() && (name.back() == 'p' || name.back() == 'P');
    return has_mark ? name.substr(0, name.size() - 1) : std::string_view();
}

}  // namespace

std::vector<const GeneEntry*> genes_called(std::string_view name) {
    static const std::vector<Naming> names = sorted_names();
    const std::string wanted = upper_case(name);
    std::vector<const GeneEntry*> genes;
    auto naming = std::lower_bound(
        names.begin(), names.end(), wanted, [](const Naming& one, const std::string& other) {
            return one.first < other;
        });
    for (; naming != names.end() && naming->first == wanted; ++naming) {
        genes.push_back(naming->second);
    }
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
