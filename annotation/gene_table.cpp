#include "annotation/gene_table.h"

#include <new>
#include <utility>
#include <vector>

#include "annotation/gene_list.h"
#include "util/malloc_array.h"

namespace ovik {

namespace {

std::map<std::string, std::string> table_of_genes() {
    std::vector<std::pair<std::string, std::string>> list;
    list.reserve(gene_list().size());
    for (const GeneEntry& gene : gene_list()) {
        list.emplace_back(gene.name, gene.function);
    }
    return {list.begin(), list.end()};
}

}  // namespace

std::map<std::string, std::string> make_gene_table() {
    try {
        return table_of_genes();
    } catch (const std::bad_alloc&) {
        // Before `main` nothing above could catch it.
        exit_out_of_memory();
    }
}

}  // namespace ovik
