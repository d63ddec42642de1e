#include "tools/map_clusters.h"

#include <string>

#include "util/console.h"
#include "util/counted.h"
#include "util/rounded.h"

namespace ovik::tool {

template <typename T>
RowClusters find_map_clusters(const TSNE<T>& tsne,
                              const FitOptions& options,
                              const FitReport& report,
                              double resolution) {
    const MatrixView<const double> X{
        tsne.X, static_cast<std::size_t>(tsne.N), static_cast<std::size_t>(tsne.D)};
    RowClusters clusters =
        report.neighbours.rows > 0
            ? clusters_by_neighbours(report.neighbours, options, resolution)
            : clusters_by_neighbours(neighbours_of_rows(X, options), options, resolution);
    print_info("Clusters: " + clusters_text(clusters, resolution) + "; the largest has " +
               counted(clusters.sizes.front(), "row", "rows") + ", the smallest " +
               std::to_string(clusters.sizes.back()));
    return clusters;
}

LabelColumn cluster_labels(const RowClusters& clusters) {
    LabelColumn column{"Cluster", {}, {}};
    column.texts.reserve(clusters.clusters.size());
    for (const std::uint32_t cluster : clusters.clusters) {
        column.texts.push_back(std::to_string(cluster + 1));
    }
    return column;
}

std::string clusters_text(const RowClusters& clusters, double resolution) {
    return std::to_string(clusters.sizes.size()) + " at resolution " +
           significant_text(resolution) + ", modularity " + rounded_text(clusters.modularity, 4);
}

template RowClusters find_map_clusters(const TSNE<float>&,
                                       const FitOptions&,
                                       const FitReport&,
                                       double);
template RowClusters find_map_clusters(const TSNE<double>&,
                                       const FitOptions&,
                                       const FitReport&,
                                       double);

}  // namespace ovik::tool
