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
    for (const auto& [neighbours, trustworthiness, preservation] :
         neighbourhood_quality({tsne.X, N, static_cast<std::size_t>(tsne.D)},
                               {tsne.Y, N, static_cast<std::size_t>(dims)},
                               sizes)) {
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
