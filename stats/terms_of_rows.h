#pragma once

#include <span>
#include <string>

#include "results/row_terms.h"

namespace ovik {

/// The GO slim terms of rows that carry the name of a gene in any form and what the gene table says
/// of it. Rows with other functions are not of these genes, whatever their names; neither are those
/// whose name is of several genes.
///
/// @param names      one per row
/// @param functions  one per row: as the gene table has them, or others
/// @return empty if no row has a term
RowTerms terms_of_rows(std::span<const std::string> names, std::span<const std::string> functions);

}  // namespace ovik
