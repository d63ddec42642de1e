#include "tools/map_quality.h"

#include <string>
#include <vector>

#include "stats/row_reliability.h"
#include "util/console.h"
#include "util/rounded.h"

namespace ovik::tool {

template <typename T>
RowNeighbourhoods report_map_quality(const TSNE<T>& tsne, int dims, bool wants_neighbours) {
    const auto N = static_cast<std::size_t>(tsne.N);
    std::vector<std::size_t> sizes = {10, 30};
    std::erase_if(sizes, [N](std::size_t size) { return 2 * size >= N; });
    print_info("Cost without exaggeration: " + rounded_text(tsne.finalCost(), 4));
    // Of the matrix as it was prepared for the metric.
    const MatrixView<const double> X{tsne.X, N, static_cast<std::size_t>(tsne.D)};
    const MatrixView<const double> Y{tsne.Y, N, static_cast<std::size_t>(dims)};
    const bool holds_distances = tsne.options.metric == MetricKind::Precomputed;
    RowNeighbourhoods measured;
    if (wants_neighbours) {
        measured = row_neighbourhoods(X, Y, sizes, kNearRows, holds_distances, tsne.on_stage);
    } else {
        measured.quality = holds_distances
                               ? neighbourhood_quality_of_distances(X, Y, sizes, tsne.on_stage)
                               : neighbourhood_quality(X, Y, sizes, tsne.on_stage);
    }
    for (const NeighbourhoodQuality& quality : measured.quality) {
        print_info("Nearest " + std::to_string(quality.neighbours) + ": trustworthiness " +
                   rounded_text(quality.trustworthiness, 4) + ", " +
                   percent_text(quality.preservation) + " of them kept");
    }
    return measured;
}

template RowNeighbourhoods report_map_quality(const TSNE<float>&, int, bool);
template RowNeighbourhoods report_map_quality(const TSNE<double>&, int, bool);

}  // namespace ovik::tool
