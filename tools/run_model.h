#pragma once

#include "input/known_columns.h"
#include "results/map_model.h"
#include "stats/tsne.h"

#include "tools/options.h"

namespace ovik::tool {

/// What is needed to place further rows on the map of a run.
///
/// @param tsne     after `actuate`, before `finish`
/// @param columns  of the matrix, as it was loaded
template <typename T>
MapModel model_of_run(const TSNE<T>& tsne, const Options& options, const KnownColumns& columns);

}  // namespace ovik::tool
