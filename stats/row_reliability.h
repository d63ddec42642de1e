#pragma once

#include <vector>

#include "results/row_reliability.h"
#include "stats/neighbourhood_quality.h"

namespace ovik {

/// How many nearest rows count as near where neighbours are false or torn.
constexpr std::size_t kNearRows = 10;

/// Fewest rows of which single ones can be judged.
constexpr std::size_t kFewestJudgedRows = 30;

/// Puts together what a map says of its rows by itself: what each keeps of its neighbours, how
/// trustworthy these are, and its cost.
///
/// @param neighbourhoods  of the map
/// @param costs           of the rows (`FitReport::row_costs`)
RowReliability row_reliability(const RowNeighbourhoods& neighbourhoods,
                               const std::vector<double>& costs);

}  // namespace ovik
