#pragma once

#include "tools/options.h"

namespace ovik::tool {

/// Refuses what several ranks do not do together.
///
/// @throws InputError if there are several, and the command line asks for something else than maps
/// by the mesh method with a search of their own, one at a time
void check_rank_options(const Options& options);

}  // namespace ovik::tool
