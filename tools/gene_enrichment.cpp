#include "tools/gene_enrichment.h"

#include <cstdio>
#include <string>
#include <system_error>
#include <vector>

#include "annotation/enrichment_table.h"
#include "annotation/gene_name_list.h"
#include "input/row_texts.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/joined.h"
#include "util/whole_file.h"

#include "tools/load_matrix.h"
#include "tools/result_paths.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// More names than this are not listed in a message.
constexpr std::size_t kMostNamed = 50;

std::vector<std::string> names_of(const std::vector<const GeneEntry*>& genes) {
    std::vector<std::string> names;
    names.reserve(genes.size());
    for (const GeneEntry* const gene : genes) {
        names.emplace_back(gene->name);
    }
    return names;
}

/// Tells of names or genes that are left out, if there are any.
void tell_of_left_out(const std::string& what, const std::vector<std::string>& names) {
    if (!names.empty()) {
        complain(what + ": " + first_few(names, kMostNamed));
    }
}

/// Tells of all that is left out; with `--quiet` only if that is most of the list.
void tell_of_list(const NamedGenes& list, const Enrichment& enrichment, const Options& options) {
    const bool is_mostly_unknown = list.unknown.size() > list.genes.size();
    if (is_mostly_unknown || !options.quiet) {
        tell_of_left_out(
            std::string(is_mostly_unknown ? "warning" : "note") + ": not found in the gene table",
            list.unknown);
    }
    if (!options.quiet) {
        tell_of_left_out("note: names of several genes, of which none is taken", list.ambiguous);
        tell_of_left_out("note: not in " + options.background, names_of(enrichment.outside));
        tell_of_left_out("note: in no term", names_of(enrichment.without_terms));
    }
}

/// The genes that are named in a file.
///
/// @throws InputError if there are none
NamedGenes read_genes(const std::string& path) {
    const std::vector<std::string> names =
        split_gene_names(read_row_file(path == "-" ? "/dev/stdin" : path, "gene"));
    if (names.empty()) {
        throw InputError(path +
                         ": holds no names of genes\nGive one per line, or several between "
                         "blanks, tabs or commas.");
    }
    NamedGenes genes = genes_named(names);
    if (genes.genes.empty()) {
        throw InputError(path + ": none of the " + counted(names.size(), "name", "names") +
                         " is that of one gene of yeast, such as " + names.front() +
                         "\nGenes are known by standard and systematic names (CDC28, YBR160W).");
    }
    return genes;
}

/// The genes of the rows of a matrix, of which nothing but the warnings is told.
///
/// @throws InputError if there are none
NamedGenes read_background(const Options& options) {
    Options of_matrix = options;
    of_matrix.matrix = options.background;
    const ConsoleSilence information_stays_out_of_the_table;
    NamedGenes genes = genes_named(load_matrix(of_matrix).matrix.row_names);
    if (genes.genes.empty()) {
        throw InputError(options.background +
                         ": none of its rows is a gene of yeast\nGenes are known by standard and "
                         "systematic names (CDC28, YBR160W): is the first column that of the "
                         "names?");
    }
    return genes;
}

/// What the list was compared with, in one sentence.
std::string summary(const Enrichment& enrichment, const Options& options) {
    return "note: " + counted(enrichment.drawn, "annotated gene", "annotated genes") +
           " of the list beside " + std::to_string(enrichment.total) + " of " +
           (options.background.empty() ? "yeast" : options.background) + ", in " +
           counted(enrichment.tested, "term", "terms");
}

/// Writes the table to its file, and says where it is, or prints it. Why a file could not be
/// written has been told when that happened.
ExitStatus deliver(const std::string& table, const Options& options) {
    if (options.enrichment_file.empty()) {
        std::fwrite(table.data(), 1, table.size(), stdout);
        return Success;
    }
    prepare_place(options.enrichment_file);
    if (write_whole_text(options.enrichment_file, table)) {
        return FailedRun;
    }
    if (!options.quiet) {
        print_info("Enrichment: " + options.enrichment_file);
    }
    return Success;
}

}  // namespace

ExitStatus show_enrichment(const Options& options) {
    spare_input(options, options.enrichment_file);
    const NamedGenes list = read_genes(options.enrich);
    const Enrichment enrichment = options.background.empty()
                                      ? enrich(list.genes)
                                      : enrich(list.genes, read_background(options).genes);
    tell_of_list(list, enrichment, options);
    if (enrichment.drawn == 0) {
        throw InputError(options.enrich + ": none of its genes is in a GO slim term" +
                         (options.background.empty() ? "" : " and in " + options.background) +
                         ", so there is nothing to test");
    }
    if (!options.quiet) {
        complain(summary(enrichment, options));
    }
    return deliver(enrichment_table(enrichment), options);
}

}  // namespace ovik::tool
