#include "tools/map_quality.h"

#include <cstdio>
#include <vector>

#include "stats/neighbourhood_quality.h"
#include "util/console.h"

namespace ovik::tool {

template <typename T>
void print_map_quality(const TSNE<T>& tsne, int dims) {
    const auto N = static_cast<std::size_t>(tsne.N);
    std::vector<std::size_t> sizes = {10, 30};
    std::erase_if(sizes, [N](std::size_t size) { return 2 * size >= N; });
    char line[160];
    std::snprintf(line, sizeof line, "Cost without exaggeration: %.4f", tsne.finalCost());
    print_info(line);
    for (const NeighbourhoodQuality& quality :
         neighbourhood_quality(tsne.X,
                               N,
                               static_cast<std::size_t>(tsne.D),
                               tsne.Y,
                               static_cast<std::size_t>(dims),
                               sizes)) {
        std::snprintf(line,
                      sizeof line,
                      "Nearest %zu: trustworthiness %.4f, %.1f %% of them kept",
                      quality.neighbours,
                      quality.trustworthiness,
                      100.0 * quality.preservation);
        print_info(line);
    }
}

template void print_map_quality(const TSNE<float>& tsne, int dims);
template void print_map_quality(const TSNE<double>& tsne, int dims);

}  // namespace ovik::tool
