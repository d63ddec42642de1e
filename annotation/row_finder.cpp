#include "annotation/row_finder.h"

#include "annotation/gene_lookup.h"

namespace ovik {

RowFinder::RowFinder(std::span<const std::string> names, bool genes) {
    for (std::size_t row = 0; row < names.size(); ++row) {
        by_name_[names[row]].push_back(row);
        const std::string_view gene = genes ? identify_gene(names[row]).systematic : "";
        if (!gene.empty()) {
            by_gene_[gene].push_back(row);
        }
    }
}

std::vector<std::size_t> RowFinder::rowsOf(const std::string& name) const {
    if (const auto found = by_name_.find(name); found != by_name_.end()) {
        return found->second;
    }
    const auto found = by_gene_.find(identify_gene(name).systematic);
    return found != by_gene_.end() ? found->second : std::vector<std::size_t>();
}

}  // namespace ovik
