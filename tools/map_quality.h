#pragma once

#include "stats/neighbourhood_quality.h"
#include "stats/tsne.h"

namespace ovik::tool {

/// Measures how well the embedding of a run keeps the 10 and the 30 nearest neighbours of each row,
/// as far as there are rows enough; prints it, and how well the embedding fits.
///
/// @param tsne              with an embedding, before `finish`; its `on_stage` is told how far it
/// is
/// @param wants_neighbours  whether false and torn neighbours of each row are looked for, too
template <typename T>
RowNeighbourhoods report_map_quality(const TSNE<T>& tsne, int dims, bool wants_neighbours = false);

}  // namespace ovik::tool
