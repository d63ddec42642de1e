#pragma once

#include "stats/tsne.h"

namespace ovik::tool {

/// Prints how well the embedding of a run fits, and how well it keeps the 10 and the 30 nearest
/// neighbours of each row, as far as there are rows enough.
///
/// @param tsne  after `actuate`, before `finish`
template <typename T>
void print_map_quality(const TSNE<T>& tsne, int dims);

}  // namespace ovik::tool
