#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "input/hdf5_file.h"
#include "input/inspected_matrix.h"
#include "input/load_options.h"
#include "input/matrix_formats.h"
#include "input/matrix_source.h"

/// Matrices of cells in HDF5: AnnData (.h5ad) and what the 10x pipelines write (.h5).

namespace ovik {

/// Whether a file that opens so is HDF5.
bool is_hdf5(std::string_view head);

/// Reads the matrix of an AnnData or 10x file: cells are its rows. `LoadOptions::layer` says which
/// of an AnnData file; a sparse matrix stays so where the options want it and it is large.
///
/// @param source  a file that is not packed
/// @throws InputError with the path in the file and the cure, if there is no such matrix, it is
/// damaged, or does not fit in memory
InspectedMatrix read_hdf5_matrix(MatrixSource& source, const LoadOptions& options);

/// All formats of `matrix_formats`, and this one before them.
const std::vector<MatrixFormat>& formats_with_hdf5();

}  // namespace ovik
