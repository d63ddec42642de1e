#include "tools/dry_run.h"

#include <cmath>
#include <filesystem>
#include <vector>

#include "stats/method.h"
#include "stats/option_effect.h"
#include "stats/run_names.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/format.h"

#include "tools/many_rows.h"
#include "tools/memory_check.h"
#include "tools/result_paths.h"

namespace ovik::tool {

namespace {

void print_file(const std::string& path, const std::string& remark) {
    const bool exists = std::filesystem::exists(path);
    print_info("  " + path + (exists ? remark : ""));
}

/// How many fits a choice of perplexity takes, and what they take on the disk.
void print_fits(const Options& options, std::size_t perplexities, std::size_t rows) {
    const auto fits = perplexities * static_cast<std::size_t>(options.seeds + options.stability +
                                                              options.against_noise);
    // Coordinates, and a number for each row of some.
    const double bytes = 8.0 * static_cast<double>(rows) *
                         static_cast<double>(options.fit.out_dims + 1) * static_cast<double>(fits);
    print_info("Fits: " + std::to_string(fits) + ", each perplexity from " +
               counted(static_cast<std::size_t>(options.seeds), "seed", "seeds") + ", of " +
               std::to_string(options.stability) + " draws of columns and of " +
               counted(static_cast<std::size_t>(options.against_noise), "matrix", "matrices") +
               " of noise; kept in " + kept_runs_path(options) + " (about " + memory_text(bytes) +
               ")");
}

}  // namespace

void print_plan(const Options& options,
                const std::vector<double>& perplexities,
                const RunSize& size,
                const AvailableMemory& available) {
    std::string neighbourhoods;
    for (const double perplexity : perplexities) {
        neighbourhoods +=
            (neighbourhoods.empty() ? "perplexity " : ", ") + num2string(perplexity, 2);
    }
    if (bar_of(options.fit, "perplexity")) {
        neighbourhoods = neighbourhood_text(options.fit, 2);
    }
    print_info("Input: " + counted(size.rows, "row", "rows") + ", " +
               counted(size.columns, "column", "columns"));
    print_info("Method: " + std::string(method_of(options.fit).name) +
               (bar_of(options.fit, "theta")
                    ? ""
                    : " (theta = " + num2string(options.fit.theta, 2) + ")") +
               ", " + neighbourhoods + ", " + std::to_string(options.fit.out_dims) +
               " dimensions, " + std::to_string(options.fit.max_iter + 1) + " iterations");
    if (options.chooses_perplexity) {
        print_fits(options, perplexities.size(), size.rows);
    } else if (options.against_noise > 0) {
        print_info("Maps of noise: " + std::to_string(options.against_noise) +
                   " of each perplexity");
    }
    if (options.seeds > 1 && !options.chooses_perplexity) {
        print_info("Seeds: " + std::to_string(options.fit.seed) + " to " +
                   std::to_string(options.fit.seed + options.seeds - 1));
    }
    if (options.stability > 0 && !options.chooses_perplexity) {
        const std::size_t maps = 2 * static_cast<std::size_t>(options.stability);
        print_info("Stability: " + counted(maps, "more map", "more maps") + " of each perplexity");
    }
    print_info("Memory: about " + memory_text(estimate_memory(size).peak()) +
               (std::isfinite(available.bytes)
                    ? "; " + memory_text(available.bytes) + " are left " + available.limit
                    : ""));
    for (const std::string& line : left_out_of_plots(options, size.rows)) {
        print_info(line);
    }
    print_info("Files:");
    if (!options.chooses_perplexity) {
        print_file(options.out_dir + options.name + ".log", " (appended to)");
    }
    for (const std::string& path : result_files(options, perplexities)) {
        print_file(path, " (replaced)");
    }
    if (!options.into.empty()) {
        print_file(options.into, " (gets obsm/X_tsne)");
    }
    print_info("Nothing was run and nothing written");
}

}  // namespace ovik::tool
