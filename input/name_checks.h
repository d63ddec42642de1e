#pragma once

#include <string>

#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/table_layout.h"

namespace ovik {

/// Refuses rows whose names are numbers that are more likely values: not whole, or not each its
/// own. Identifiers that are numbers are noted.
///
/// @throws InputError with the cure
void check_names(const std::string& path,
                 const TableLayout& layout,
                 const LoadOptions& options,
                 InspectedMatrix& matrix);

/// Why a matrix seems to have genes in its columns instead of its rows, and the cure: the columns
/// have names of genes and the rows do not, or there are far more columns than rows. Empty if it
/// does not.
std::string transposed_warning(const std::string& path,
                               const LoadOptions& options,
                               const InspectedMatrix& matrix);

}  // namespace ovik
