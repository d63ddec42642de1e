#include "stats/row_clusters.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

#include "neighbours/neighbour_lists.h"
#include "stats/cached_neighbours.h"
#include "stats/chosen_affinities.h"
#include "stats/embedding_start.h"
#include "stats/leiden.h"
#include "stats/modularity.h"
#include "stats/numerics.h"
#include "stats/sparse_affinities.h"

namespace ovik {

namespace {

NeighbourLists lists_of(const NeighbourGraph& graph) {
    NeighbourLists lists;
    lists.starts.reserve(graph.rows + 1);
    for (std::size_t n = 0; n < graph.rows; ++n) {
        for (std::size_t i = n * graph.neighbour_count; i < (n + 1) * graph.neighbour_count; ++i) {
            // Rows are filled up at an infinite distance.
            if (std::isfinite(graph.distances[i])) {
                lists.nearest.push_back({graph.neighbours[i], graph.distances[i]});
            }
        }
        lists.starts.push_back(lists.nearest.size());
    }
    return lists;
}

}  // namespace

SparseMatrix affinities_of_neighbours(const NeighbourGraph& neighbours, const FitOptions& options) {
    const std::unique_ptr<RowAffinities> rows = chosen_rows(options, neighbours.rows);
    CachedNeighbours given(lists_of(neighbours));
    OwnRandomStream not_used;
    NeighbourHooks hooks;
    hooks.cached = &given;
    hooks.random = &not_used;
    const SparseMatrix conditional = conditional_affinities(
        {nullptr, neighbours.rows, 0}, *rows, static_cast<int>(neighbours.neighbour_count), hooks);
    return symmetrized(conditional.view(), neighbours.rows);
}

RowClusters clusters_by_neighbours(const NeighbourGraph& neighbours,
                                   const FitOptions& options,
                                   double resolution) {
    if (!(resolution > 0.0) || !std::isfinite(resolution)) {
        throw std::invalid_argument("the resolution of clusters has to be above 0");
    }
    const SparseMatrix affinities = affinities_of_neighbours(neighbours, options);
    RowClusters result;
    result.clusters = leiden_communities(affinities.view(), neighbours.rows, resolution);
    result.modularity = modularity(affinities.view(), result.clusters, 1.0);
    for (const std::uint32_t cluster : result.clusters) {
        result.sizes.resize(std::max<std::size_t>(result.sizes.size(), cluster + 1));
        ++result.sizes[cluster];
    }
    return result;
}

NeighbourGraph neighbours_of_rows(MatrixView<const double> X, const FitOptions& options) {
    const auto count = static_cast<std::size_t>(std::max(affinity_neighbours(options, X.rows), 0));
    return placing_neighbours(X, options.metric, ties_of(options.numerics), count);
}

}  // namespace ovik
