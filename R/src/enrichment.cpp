#include "enrichment.h"

#include <ovik/annotation/enrichment_table.h>
#include <ovik/annotation/gene_name_list.h>
#include <ovik/annotation/go_slim.h>
#include <string>
#include <vector>

namespace ovik::r {

namespace {

using namespace cpp11::literals;  // NOLINT(google-build-using-namespace): that is their use

using Texts = std::vector<std::string>;

Texts listed_names(const std::vector<const GeneEntry*>& genes) {
    Texts names;
    for (const GeneEntry* const gene : genes) {
        names.emplace_back(gene->name);
    }
    return names;
}

std::string joined(const Texts& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : " ") + text;
    }
    return all;
}

/// A column of the table: what `value_of` says of each term.
template <typename ValueOf>
auto column(const Enrichment& enrichment, const ValueOf& value_of) {
    std::vector<decltype(value_of(enrichment.terms.front()))> values;
    for (const EnrichedTerm& term : enrichment.terms) {
        values.push_back(value_of(term));
    }
    return values;
}

cpp11::writable::list columns_of(const Enrichment& enrichment) {
    const auto term_of = [](const EnrichedTerm& term) { return go_terms()[term.term]; };
    const auto texts = [&](const auto& value_of) { return column(enrichment, value_of); };
    const auto whole = [](std::size_t number) { return static_cast<int>(number); };
    cpp11::writable::list columns;
    columns.push_back(
        {"term"_nm = texts([&](const auto& term) { return std::string(term_of(term).id); })});
    columns.push_back(
        {"name"_nm = texts([&](const auto& term) { return std::string(term_of(term).name); })});
    columns.push_back({"aspect"_nm = texts([&](const auto& term) {
                           return std::string(aspect_name(term_of(term).aspect));
                       })});
    columns.push_back({"hits"_nm = texts([&](const auto& term) { return whole(term.hits); })});
    columns.push_back({"size"_nm = texts([&](const auto& term) { return whole(term.size); })});
    columns.push_back({"drawn"_nm = texts([&](const auto&) { return whole(enrichment.drawn); })});
    columns.push_back({"total"_nm = texts([&](const auto&) { return whole(enrichment.total); })});
    columns.push_back({"fold"_nm = texts([](const auto& term) { return term.fold; })});
    columns.push_back({"p"_nm = texts([](const auto& term) { return term.p; })});
    columns.push_back({"q"_nm = texts([](const auto& term) { return term.q; })});
    columns.push_back(
        {"genes"_nm = texts([](const auto& term) { return joined(listed_names(term.genes)); })});
    return columns;
}

}  // namespace

cpp11::writable::list enriched_terms(const cpp11::strings& genes, SEXP background) {
    const NamedGenes list = genes_named(cpp11::as_cpp<Texts>(genes));
    const bool has_background = background != R_NilValue;
    const NamedGenes from =
        has_background ? genes_named(cpp11::as_cpp<Texts>(background)) : NamedGenes();
    const Enrichment enrichment =
        has_background ? enrich(list.genes, from.genes) : enrich(list.genes);
    cpp11::writable::list result;
    result.push_back({"terms"_nm = columns_of(enrichment)});
    result.push_back({"found"_nm = static_cast<int>(list.genes.size())});
    result.push_back({"background"_nm = static_cast<int>(from.genes.size())});
    result.push_back({"drawn"_nm = static_cast<int>(enrichment.drawn)});
    result.push_back({"tested"_nm = static_cast<int>(enrichment.tested)});
    result.push_back({"not_found"_nm = list.unknown});
    result.push_back({"ambiguous"_nm = list.ambiguous});
    result.push_back({"outside"_nm = listed_names(enrichment.outside)});
    result.push_back({"without_terms"_nm = listed_names(enrichment.without_terms)});
    return result;
}

cpp11::strings split_names(const std::string& text) {
    return cpp11::strings(cpp11::as_sexp(split_gene_names(text)));
}

}  // namespace ovik::r
