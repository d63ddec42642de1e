#include "tools/gene_report.h"

#include <cstdio>
#include <vector>

#include "annotation/gene_names.h"
#include "util/joined.h"

namespace ovik::tool {

ExitStatus show_gene(const std::string& name) {
    const GeneEntry* const gene = find_gene(name);
    if (gene != nullptr) {
        std::printf("%s: %s\n", gene->name, gene->function);
        return Success;
    }
    std::fprintf(stderr, "ovik-tsne: there is no gene \"%s\" in the table\n", name.c_str());
    const std::vector<std::string> suggestions = suggest_gene_names(name);
    if (!suggestions.empty()) {
        std::fprintf(stderr, "Did you mean %s?\n", joined(suggestions, " or ").c_str());
    }
    return BadInput;
}

}  // namespace ovik::tool
