#include "annotation/gene_table.h"

#include <utility>
#include <vector>

#include "annotation/gene_list.h"

namespace ovik {

std::map<std::string, std::string> make_gene_table() {
    std::vector<std::pair<std::string, std::string>> list;
    list.reserve(gene_list().size());
    for (const GeneEntry& gene : gene_list()) {
        list.emplace_back(gene.name, gene.function);
    }
    return {list.begin(), list.end()};
}

}  // namespace ovik
