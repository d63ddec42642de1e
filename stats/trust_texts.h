#pragma once

#include <memory>
#include <string>
#include <vector>

#include "results/map_trust.h"
#include "results/recorded_stability.h"
#include "stats/fit.h"
#include "stats/neighbourhood_quality.h"
#include "stats/row_clusters.h"

/// What is known of a map, in the words of its chart page.

namespace ovik {

/// What was measured of a map: each of the numbers with a sentence.
///
/// @param report   of the fit
/// @param quality  by size of the neighbourhoods, ascending; empty if it was not measured. The last
///                 one gives what each row keeps.
/// @param clusters null if there are none
/// @param rows     what is known of each row; null for nothing
/// @param stability  how far it stays as it is on others; null if it was not compared with any
/// @return nothing if nothing but the fit was made
MapTrust map_trust(const FitReport& report,
                   std::vector<NeighbourhoodQuality> quality,
                   const RowClusters* clusters,
                   std::shared_ptr<const RowReliability> rows = nullptr,
                   std::shared_ptr<const RecordedStability> stability = nullptr);

/// What the console says of the stability of a map.
std::vector<std::string> stability_lines(const RecordedStability& stability);

}  // namespace ovik
