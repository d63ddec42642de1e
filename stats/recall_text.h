#pragma once

#include <string>

#include "neighbours/neighbour_recall.h"

namespace ovik {

/// A recall in words: "98.7 % of the nearest, of 1000 rows".
std::string recall_text(const NeighbourRecall& recall);

}  // namespace ovik
