#include "tools/map_quality.h"

#include <cstdio>
#include <vector>

#include "stats/row_reliability.h"
#include "util/console.h"

namespace ovik::tool {

template <typename T>
RowNeighbourhoods report_map_quality(const TSNE<T>& tsne, int dims, bool wants_neighbours) {
    const auto N = static_cast<std::size_t>(tsne.N);
    std::vector<std::size_t> sizes = {10, 30};
    std::erase_if(sizes, [N](std::size_t size) { return 2 * size >= N; });
    char line[160];
    std::snprintf(line, sizeof line, "Cost without exaggeration: %.4f", tsne.finalCost());
    print_info(line);
    // Of the matrix as it was prepared for the metric.
    const MatrixView<const double> X{tsne.X, N, static_cast<std::size_t>(tsne.D)};
    const MatrixView<const double> Y{tsne.Y, N, static_cast<std::size_t>(dims)};
    const bool holds_distances = tsne.options.metric == MetricKind::Precomputed;
    RowNeighbourhoods measured;
    if (wants_neighbours) {
        measured = row_neighbourhoods(X, Y, sizes, kNearRows, holds_distances);
    } else {
        measured.quality = holds_distances ? neighbourhood_quality_of_distances(X, Y, sizes)
                                           : neighbourhood_quality(X, Y, sizes);
    }
    for (const NeighbourhoodQuality& quality : measured.quality) {
        std::snprintf(line,
                      sizeof line,
                      "Nearest %zu: trustworthiness %.4f, %.1f %% of them kept",
                      quality.neighbours,
                      quality.trustworthiness,
                      100.0 * quality.preservation);
        print_info(line);
    }
    return measured;
}

template RowNeighbourhoods report_map_quality(const TSNE<float>&, int, bool);
template RowNeighbourhoods report_map_quality(const TSNE<double>&, int, bool);

}  // namespace ovik::tool
