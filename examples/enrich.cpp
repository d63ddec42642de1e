#include <cstdio>
#include <ovik/annotation/enrichment_table.h>
#include <ovik/annotation/gene_name_list.h>
#include <string>
#include <vector>

int main() {
    const std::vector<std::string> names = ovik::split_gene_names("HSP104 SSA1, HSP82");
    const ovik::Enrichment enrichment = ovik::enrich(ovik::genes_named(names).genes);
    std::fputs(ovik::enrichment_table(enrichment).c_str(), stdout);
}
