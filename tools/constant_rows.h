#pragma once

#include "input/load.h"

#include "tools/options.h"

namespace ovik::tool {

/// Refuses rows that the metric of the run cannot compare, or leaves them out and says which, as
/// the command line asks for; names and labels follow.
///
/// @param options  of a run, or of a placement with the metric of the map in `fit`
/// @throws InputError if they are refused, or too few rows are left, or those of a run cannot be
/// told apart
void settle_constant_rows(LoadedMatrix& loaded, const Options& options);

}  // namespace ovik::tool
