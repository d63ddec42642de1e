#include "tools/neighbour_file.h"

#include <string>
#include <utility>

#include "stats/given_neighbours.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

std::shared_ptr<CachedNeighbours> load_neighbours(const Options& options,
                                                  const std::vector<double>& perplexities,
                                                  std::size_t rows) {
    const std::string& path = options.neighbours_file;
    if (path.empty()) {
        return nullptr;
    }
    NeighbourLists lists = read_neighbour_lists(path, rows);
    for (const double perplexity : perplexities) {
        FitOptions fit = options.fit;
        fit.perplexity = perplexity;
        const std::string remark = check_given_neighbours(lists, fit, path, 1, options.quality);
        if (!remark.empty()) {
            complain("warning: " + remark);
        }
    }
    return make_given_neighbours(std::move(lists));
}

}  // namespace ovik::tool
