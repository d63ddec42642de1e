#pragma once

#include <string>
#include <vector>

#include "tools/exit_status.h"

/// What the command tells of genes by name.

namespace ovik::tool {

/// Prints a gene and its description. A name that the table lacks is refused on standard error,
/// with the names that may have been meant; it is never taken for one of them.
ExitStatus show_gene(const std::string& name);

/// A warning if most of the rows carry systematic names of genes that the table lists under
/// standard ones; else empty.
std::string systematic_names_warning(const std::vector<std::string>& row_names);

/// Replaces systematic names by standard ones where the gene has one.
void rename_to_standard(std::vector<std::string>& row_names);

/// One line: how many of the rows the table describes, and the first few that it lacks.
std::string found_genes_line(const std::vector<std::string>& row_names);

}  // namespace ovik::tool
