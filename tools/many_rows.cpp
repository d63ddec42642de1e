#include "tools/many_rows.h"

#include <algorithm>

#include "plots/chart_page.h"
#include "plots/gnuplot_script.h"
#include "util/n_choose_k.h"

namespace ovik::tool {

std::vector<std::string> left_out_of_plots(const Options& options, std::size_t rows) {
    std::vector<std::string> lines;
    if (!options.plots) {
        return lines;
    }
    const auto dims = static_cast<unsigned>(std::max(options.fit.out_dims, 0));
    const std::size_t points = n_choose_k(dims, 2) * rows;
    const std::string count = std::to_string(points);
    if (points > kMostPagePoints) {
        lines.push_back("Chart page: without the map, which has " + count +
                        " points, more than the " + std::to_string(kMostPagePoints) +
                        " that a page shows; it names the other results");
    }
    if (points > kMostScriptPoints) {
        lines.push_back("Figure: without a script, which would hold " + count +
                        " points, more than " + std::to_string(kMostScriptPoints));
    }
    return lines;
}

}  // namespace ovik::tool
