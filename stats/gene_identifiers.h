#pragma once

#include <span>
#include <string>
#include <vector>

#include "results/gene_identifiers.h"

namespace ovik {

/// What the gene table calls the genes of rows.
///
/// @param names      of the rows
/// @param functions  of the rows; a row without one is of no known gene
/// @return one per row, empty for a row of no gene or of several; none at all if every row is so
std::vector<GeneIdentifiers> gene_identifiers(std::span<const std::string> names,
                                              std::span<const std::string> functions);

}  // namespace ovik
