#include "annotation/enrichment_table.h"

#include <vector>

#include "annotation/go_slim.h"
#include "util/joined.h"
#include "util/json_text.h"

namespace ovik {

namespace {

std::string names_of(const EnrichedTerm& term) {
    std::vector<std::string> names;
    for (const GeneEntry* const gene : term.genes) {
        names.emplace_back(gene->name);
    }
    return joined(names, " ");
}

}  // namespace

std::string_view aspect_name(char aspect) {
    return aspect == 'P' ? "process" : aspect == 'F' ? "function" : "component";
}

std::string enrichment_table(const Enrichment& enrichment) {
    std::string table = "term\tname\taspect\thits\tsize\tdrawn\ttotal\tfold\tp\tq\tgenes\n";
    for (const EnrichedTerm& term : enrichment.terms) {
        const GoTerm& known = go_terms()[term.term];
        table += joined({known.id,
                         known.name,
                         std::string(aspect_name(known.aspect)),
                         json_text(term.hits),
                         json_text(term.size),
                         json_text(enrichment.drawn),
                         json_text(enrichment.total),
                         json_text(term.fold),
                         json_text(term.p),
                         json_text(term.q),
                         names_of(term)},
                        "\t") +
                 "\n";
    }
    return table;
}

}  // namespace ovik
