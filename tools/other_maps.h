#pragma once

#include <memory>

#include "results/recorded_stability.h"
#include "stats/fit.h"
#include "stats/row_clusters.h"
#include "stats/tsne.h"

#include "tools/options.h"

namespace ovik::tool {

/// Makes maps from other seeds and of other columns, and says on the console how far the map of a
/// run stays as it is on them.
///
/// @param tsne      with an embedding, before `finish`
/// @param X         the matrix as it was loaded
/// @param report    of the fit
/// @param clusters  of the rows; null for none
/// @return null, with a message, if the run was interrupted
/// @throws what `varied_maps` throws
template <typename T>
std::shared_ptr<const RecordedStability> compare_with_other_maps(const TSNE<T>& tsne,
                                                                 const Options& options,
                                                                 MatrixView<const double> X,
                                                                 const FitReport& report,
                                                                 const RowClusters* clusters);

}  // namespace ovik::tool
