#pragma once

#include <vector>

#include "plots/comparison_page.h"

#include "tools/aligned_maps.h"
#include "tools/comparison.h"

namespace ovik::tool {

/// The numbers of runs, those alone that a run has, each with a sentence and, where runs can be
/// compared by it, its best.
///
/// @param maps  of these runs
std::vector<ComparedNumber> numbers_of(const std::vector<ComparisonEntry>& entries,
                                       const AlignedMaps& maps);

}  // namespace ovik::tool
