#include "stats/gene_identifiers.h"

#include <cstddef>
#include <string_view>

#include "annotation/gene_lookup.h"
#include "annotation/gene_names.h"

namespace ovik {

namespace {

GeneIdentifiers identifiers_of(const std::string& name) {
    const NamedGene gene = identify_gene(name);
    GeneIdentifiers identifiers;
    if (!gene.systematic.empty()) {
        identifiers.systematic = gene.systematic;
        identifiers.sgd_id = gene.gene->sgd_id;
        for (const std::string_view alias : aliases_of_gene(gene.systematic)) {
            identifiers.aliases.emplace_back(alias);
        }
    }
    return identifiers;
}

}  // namespace

std::vector<GeneIdentifiers> gene_identifiers(std::span<const std::string> names,
                                              std::span<const std::string> functions) {
    std::vector<GeneIdentifiers> identifiers(names.size());
    bool has_any = false;
    for (std::size_t row = 0; row < names.size(); ++row) {
        if (row < functions.size() && !functions[row].empty()) {
            identifiers[row] = identifiers_of(names[row]);
            has_any = has_any || !identifiers[row].systematic.empty();
        }
    }
    return has_any ? identifiers : std::vector<GeneIdentifiers>();
}

}  // namespace ovik
