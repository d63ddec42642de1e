#pragma once

#include <string>

#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/option_spelling.h"
#include "input/sparse_rows.h"
#include "input/transformations.h"

/// What becomes of a sparse matrix on its way in.

namespace ovik {

/// Bytes of memory that reading may take: what the options say, else what this process can get.
double memory_limit(const LoadOptions& options);

/// Whether a sparse matrix stays sparse: the options want it to where it is large, which is a
/// matter of its extents alone.
bool stays_sparse(const LoadOptions& options, std::size_t rows, std::size_t columns);

/// Puts a sparse matrix in the place of the values, or makes dense values of it.
///
/// @param name  of the source, for messages
/// @throws InputError if the dense values would not fit in memory, with what keeps them sparse
void take_sparse(const std::string& name,
                 const LoadOptions& options,
                 SparseRows&& sparse,
                 InspectedMatrix& matrix);

/// Makes dense values of the sparse ones of a matrix.
void make_dense(InspectedMatrix& matrix);

/// Transforms sparse values, as `transform` does dense ones: with the same bits.
///
/// @param matrix  sparse
/// @return what was done, in a sentence for the user
/// @throws InputError if the transformations would leave no zeros; if there is a value below 0 of
/// which to take the logarithm or a share, with its place
std::string transform_sparse(const std::string& path,
                             const Transformations& transformations,
                             const OptionSpelling& spell,
                             InspectedMatrix& matrix);

/// @throws InputError if all rows are equal, or values are out of range
void check_sparse_values(const std::string& path, const InspectedMatrix& matrix);

}  // namespace ovik
