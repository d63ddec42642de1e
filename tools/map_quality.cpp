#include "tools/map_quality.h"

#include <string>

#include "util/console.h"
#include "util/rounded.h"

namespace ovik::tool {

template <typename T>
std::vector<NeighbourhoodQuality> report_map_quality(const TSNE<T>& tsne, int dims) {
    const auto N = static_cast<std::size_t>(tsne.N);
    std::vector<std::size_t> sizes = {10, 30};
    std::erase_if(sizes, [N](std::size_t size) { return 2 * size >= N; });
    print_info("Cost without exaggeration: " + rounded_text(tsne.finalCost(), 4));
    // Of the matrix as it was prepared for the metric.
    const MatrixView<const double> X{tsne.X, N, static_cast<std::size_t>(tsne.D)};
    const MatrixView<const double> Y{tsne.Y, N, static_cast<std::size_t>(dims)};
    std::vector<NeighbourhoodQuality> measured =
        tsne.options.metric == MetricKind::Precomputed
            ? neighbourhood_quality_of_distances(X, Y, sizes, tsne.on_stage)
            : neighbourhood_quality(X, Y, sizes, tsne.on_stage);
    for (const NeighbourhoodQuality& quality : measured) {
        print_info("Nearest " + std::to_string(quality.neighbours) + ": trustworthiness " +
                   rounded_text(quality.trustworthiness, 4) + ", " +
                   percent_text(quality.preservation) + " of them kept");
    }
    return measured;
}

template std::vector<NeighbourhoodQuality> report_map_quality(const TSNE<float>&, int);
template std::vector<NeighbourhoodQuality> report_map_quality(const TSNE<double>&, int);

}  // namespace ovik::tool
