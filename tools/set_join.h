#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "input/gene_set_file.h"
#include "results/gene_set.h"

#include "tools/options.h"

namespace ovik::tool {

/// Sets of rows, and how their genes found the rows.
struct JoinedSets {
    /// Those of which a gene is there.
    std::vector<GeneSet> sets;
    /// Genes of all sets, each name once.
    std::size_t genes = 0;
    /// Those of them that are the gene of a row.
    std::size_t found = 0;
    /// The first few that are of no row.
    std::vector<std::string> first_missing;
    /// Names of the sets of which no gene is there.
    std::vector<std::string> left_out;
};

/// Gives sets their rows: those of the very name of a gene, else of the gene that it stands for.
///
/// @param path   of the sets, for messages
/// @param genes  whether names stand for genes of yeast
/// @throws InputError if no gene of any set is that of a row
JoinedSets join_sets(const std::vector<ListedSet>& listed,
                     const std::vector<std::string>& row_names,
                     const std::string& path,
                     bool genes);

/// One line: how many genes of how many sets are there, and which are not.
std::string joined_sets_line(const JoinedSets& joined);

/// The sets that the options bring in, and what there is to say of them on the console; none
/// without a file of them.
std::vector<GeneSet> settle_sets(const std::vector<std::string>& row_names, const Options& options);

}  // namespace ovik::tool
