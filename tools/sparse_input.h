#pragma once

#include "input/load.h"

#include "tools/options.h"

namespace ovik::tool {

/// Puts the components of a matrix that stayed sparse in the place of its columns, as `--pca` asks
/// for, and says what they keep; the fit then takes them as they are. Does nothing with other
/// matrices. For a dry run the values are left out.
///
/// @param options  `fit.pca` becomes 0, and `sparse_components` what it was
/// @throws InputError if the options do not go with that, the matrix cannot bear them, or the
/// components would not fit in memory
void settle_sparse_input(LoadedMatrix& loaded, Options& options);

}  // namespace ovik::tool
