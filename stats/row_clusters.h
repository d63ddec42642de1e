#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "neighbours/neighbour_graph.h"
#include "stats/fit_options.h"
#include "stats/sparse_matrix.h"
#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// Clusters of the rows of a matrix.
struct RowClusters {
    /// The cluster of each row, from 0: the largest first, of equally large ones that of the first
    /// row.
    std::vector<std::uint32_t> clusters;
    /// How many rows each cluster has.
    std::vector<std::size_t> sizes;
    /// The modularity of the clusters as usual (resolution 1), whatever resolution found them.
    double modularity = 0.0;
};

/// The joint affinities of a fit, from the neighbours that it found (`FitReport::neighbours`): its
/// matrix but for a constant factor.
///
/// @param neighbours  of all rows
/// @param options     those of the fit
/// @throws WorkMemoryError if the matrix does not fit in memory
SparseMatrix affinities_of_neighbours(const NeighbourGraph& neighbours, const FitOptions& options);

/// Clusters of rows by the neighbours of a fit: the communities (`leiden_communities`) of the graph
/// in which an edge weighs the joint affinity of its rows. The map plays no part. The same for any
/// number of threads.
///
/// @param neighbours  `FitReport::neighbours` of a fit
/// @param options     those of the fit
/// @param resolution  above 0; 1 for modularity as usual, more for more clusters
/// @throws WorkMemoryError if the graph does not fit in memory
/// @throws std::invalid_argument if the resolution is not above 0
OVIK_API RowClusters clusters_by_neighbours(const NeighbourGraph& neighbours,
                                            const FitOptions& options,
                                            double resolution = 1.0);

/// The neighbours that a fit would take if its method searched for any, for those that do not.
///
/// @param X  as the fit left it: centred and scaled rows in the form of the metric, or distances
NeighbourGraph neighbours_of_rows(MatrixView<const double> X, const FitOptions& options);

}  // namespace ovik
