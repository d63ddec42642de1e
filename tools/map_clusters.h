#pragma once

#include "results/label_column.h"
#include "stats/fit.h"
#include "stats/row_clusters.h"
#include "stats/tsne.h"

namespace ovik::tool {

/// Divides the rows of a run into clusters, and says on the console what came of it.
///
/// @param tsne    with an embedding, before `finish`
/// @param report  of the fit, with the neighbours of the rows if its method searches for any
template <typename T>
RowClusters find_map_clusters(const TSNE<T>& tsne,
                              const FitOptions& options,
                              const FitReport& report,
                              double resolution);

/// The clusters as labels: "1" for the largest, "2" and so on.
LabelColumn cluster_labels(const RowClusters& clusters);

/// "12 at resolution 1, modularity 0.6213".
std::string clusters_text(const RowClusters& clusters, double resolution);

}  // namespace ovik::tool
