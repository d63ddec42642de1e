#include "tools/set_join.h"

#include <set>
#include <utility>

#include "annotation/row_finder.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/joined.h"
#include "util/plain_text.h"

namespace ovik::tool {

namespace {

constexpr std::size_t kListed = 3;

}  // namespace

JoinedSets join_sets(const std::vector<ListedSet>& listed,
                     const std::vector<std::string>& row_names,
                     const std::string& path,
                     bool genes) {
    const RowFinder finder(row_names, genes);
    JoinedSets joined;
    std::set<std::string> seen;
    for (const ListedSet& set : listed) {
        std::set<std::size_t> rows;
        for (const std::string& gene : set.genes) {
            const std::vector<std::size_t> of_gene = finder.rowsOf(gene);
            rows.insert(of_gene.begin(), of_gene.end());
            if (!seen.insert(gene).second) {
                continue;
            }
            ++joined.genes;
            joined.found += of_gene.empty() ? 0U : 1U;
            if (of_gene.empty() && joined.first_missing.size() < kListed) {
                joined.first_missing.push_back(gene);
            }
        }
        if (rows.empty()) {
            joined.left_out.push_back(set.name);
        } else {
            joined.sets.push_back({set.name, {rows.begin(), rows.end()}, set.colour});
        }
    }
    if (joined.sets.empty()) {
        throw InputError(path + ": no gene of its sets (" + listed.front().genes.front() +
                         ", ...) is that of a row (" +
                         (row_names.empty() ? "" : row_names.front()) +
                         ", ...)\nSets name genes as the rows of the matrix do, or by any name "
                         "that the gene table knows.");
    }
    return joined;
}

std::string joined_sets_line(const JoinedSets& joined) {
    const std::size_t missing = joined.genes - joined.found;
    std::string line = "Sets: " + counted(joined.sets.size(), "set", "sets") + "; " +
                       std::to_string(joined.found) + " of " +
                       counted(joined.genes, "gene is", "genes are") + " in the matrix";
    if (missing > 0) {
        line += ", not " + first_few(joined.first_missing, kListed, missing);
    }
    if (!joined.left_out.empty()) {
        line += "; " +
                counted(joined.left_out.size(),
                        "set has no gene there and is",
                        "sets have no gene there and are") +
                " left out: " + first_few(joined.left_out, kListed);
    }
    return line;
}

std::vector<GeneSet> settle_sets(const std::vector<std::string>& row_names,
                                 const Options& options) {
    if (options.sets_file.empty()) {
        return {};
    }
    JoinedSets joined = join_sets(read_gene_sets(options.sets_file),
                                  row_names,
                                  options.sets_file,
                                  options.names != RowNames::Other);
    print_info(one_line_utf8(joined_sets_line(joined)));
    return std::move(joined.sets);
}

}  // namespace ovik::tool
