#pragma once

#include "input/load.h"

#include "tools/options.h"

namespace ovik::tool {

/// Loads the matrix as the command line asks for, and prints what there is to say of it.
///
/// @throws InputError if the matrix cannot be embedded
LoadedMatrix load_matrix(const Options& options);

}  // namespace ovik::tool
