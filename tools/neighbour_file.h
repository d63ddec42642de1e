#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "stats/cached_neighbours.h"

#include "tools/options.h"

namespace ovik::tool {

/// Reads the neighbours that the command line gives in the place of a search, and warns of rows
/// that have fewer than the runs take.
///
/// @param perplexities  of the runs
/// @return null without such a file
/// @throws InputError if they do not do for the matrix or for a run
/// @throws std::system_error if the file cannot be read to its end
std::shared_ptr<CachedNeighbours> load_neighbours(const Options& options,
                                                  const std::vector<double>& perplexities,
                                                  std::size_t rows);

}  // namespace ovik::tool
