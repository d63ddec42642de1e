#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "annotation/gene_lookup.h"

#include "tools/options.h"

namespace ovik::tool {

/// What the gene table knows of the rows of a matrix.
struct RowGenes {
    /// What the name of each row stands for.
    std::vector<NamedGene> rows;
    /// Rows that carry the very name that the table lists.
    std::size_t listed = 0;
    /// Rows that carry another name of one gene of the table.
    std::size_t mapped = 0;
    /// Rows that carry a name of several genes.
    std::size_t ambiguous = 0;
    /// The names of the first rows that are of no gene; "row 3" of a row without a name.
    std::vector<std::string> first_missing;

    [[nodiscard]] std::size_t found() const { return listed + mapped; }
};

// One text per row, empty for rows that are of no gene of the table.

/// What the genes do; "NULL" for a gene without description.
std::vector<std::string> functions_of(const RowGenes& genes);

/// The systematic names of the genes; empty also where several genes have the listed name.
std::vector<std::string> systematic_names_of(const RowGenes& genes);

/// The names that the table lists the genes under, where the rows have others; no texts if none
/// has.
std::vector<std::string> other_names_of(const RowGenes& genes,
                                        const std::vector<std::string>& row_names);

/// Looks the rows up, also by other letter case, systematic names, names of proteins and standard
/// names of other releases.
RowGenes look_up_rows(const std::vector<std::string>& row_names);

/// What names that were those of columns are: of genes, if the table knows at least half of them.
RowNames kind_of_names(const std::vector<std::string>& names);

/// What is known of rows that are no genes of yeast: nothing.
RowGenes rows_without_genes(std::size_t row_count);

/// Replaces names by those that the table lists the genes under; others stay.
void rename_to_standard(std::vector<std::string>& row_names);

/// One line: how many of the rows the table knows, by which names, and the first few that it lacks.
std::string found_genes_line(const RowGenes& genes);

/// A warning if the table knows fewer than half of the rows; else empty. Rows that are called by
/// their numbers have no names to be known by.
std::string few_genes_warning(const RowGenes& genes, const std::vector<std::string>& row_names);

}  // namespace ovik::tool
