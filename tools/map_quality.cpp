#include "tools/map_quality.h"

#include <cstdio>

#include "stats/neighbourhood_quality.h"
#include "util/console.h"

namespace ovik::tool {

template <typename T>
std::vector<RecordedQuality> report_map_quality(const TSNE<T>& tsne, int dims) {
    const auto N = static_cast<std::size_t>(tsne.N);
    std::vector<std::size_t> sizes = {10, 30};
    std::erase_if(sizes, [N](std::size_t size) { return 2 * size >= N; });
    char line[160];
    std::snprintf(line, sizeof line, "Cost without exaggeration: %.4f", tsne.finalCost());
    print_info(line);
    std::vector<RecordedQuality> recorded;
    // Of the matrix as it was prepared for the metric.
    const MatrixView<const double> X{tsne.X, N, static_cast<std::size_t>(tsne.D)};
    const MatrixView<const double> Y{tsne.Y, N, static_cast<std::size_t>(dims)};
    const std::vector<NeighbourhoodQuality> measured =
        tsne.options.metric == MetricKind::Precomputed
            ? neighbourhood_quality_of_distances(X, Y, sizes)
            : neighbourhood_quality(X, Y, sizes);
    for (const auto& [neighbours, trustworthiness, preservation] : measured) {
        std::snprintf(line,
                      sizeof line,
                      "Nearest %zu: trustworthiness %.4f, %.1f %% of them kept",
                      neighbours,
                      trustworthiness,
                      100.0 * preservation);
        print_info(line);
        recorded.push_back({neighbours, trustworthiness, preservation});
    }
    return recorded;
}

template std::vector<RecordedQuality> report_map_quality(const TSNE<float>&, int);
template std::vector<RecordedQuality> report_map_quality(const TSNE<double>&, int);

}  // namespace ovik::tool
