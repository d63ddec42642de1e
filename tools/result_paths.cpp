#include "tools/result_paths.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "stats/run_names.h"
#include "util/format.h"
#include "util/input_error.h"

namespace ovik::tool {

namespace {

bool may_write(const std::string& path) {
    return access(path.c_str(), W_OK) == 0;
}

/// The files that the command reads, each with the option that names it.
std::vector<std::pair<std::string, std::string>> read_files(const Options& options) {
    return {{"MATRIX", options.matrix},
            {"--labels", options.load.labels_file},
            {"--row-names", options.load.row_names_file},
            {"--sets", options.sets_file},
            {"--highlight", options.highlight},
            {"--enrich", options.enrich},
            {"--background", options.background},
            {"--start", options.start_file},
            {"--neighbours-from", options.neighbours_file},
            {"--onto", options.onto},
            {"--resume", options.resume}};
}

/// The files that placing rows on a map writes.
std::vector<std::string> onto_files(const Options& options) {
    const std::string base = onto_base(options);
    std::vector<std::string> files = {base + ".csv"};
    for (const char* const extension : {".html", ".gp", ".png", ".svg"}) {
        if (options.plots) {
            files.push_back(base + extension);
        }
    }
    if (!options.report_file.empty()) {
        files.push_back(options.report_file);
    }
    return files;
}

}  // namespace

void spare_input(const Options& options, const std::string& result) {
    for (const auto& [option, input] : read_files(options)) {
        std::error_code not_both_there;
        if (!input.empty() && std::filesystem::equivalent(input, result, not_both_there)) {
            // NOLINTNEXTLINE(performance-inefficient-string-concatenation): before the end
            throw InputError(result + ": this result would take the place of " + option +
                             "\nGive the results another place or name (--out-dir, --name, "
                             "--suffix, or the option of this one).");
        }
    }
}

std::string result_base(const Options& options, double perplexity) {
    FitOptions fit = options.fit;
    fit.perplexity = perplexity;
    return options.out_dir + options.name + "_" + result_stem(fit, options.suffix);
}

std::string cost_base(const std::string& result_base) {
    return result_base + "_cost";
}

std::string annotated_path(const std::string& result_base) {
    return result_base + "_annotated.tsv";
}

std::string clusters_path(const std::string& result_base) {
    return result_base + ".clusters.tsv";
}

std::string reliability_path(const std::string& result_base) {
    return result_base + ".reliability.tsv";
}

std::string stability_path(const std::string& result_base) {
    return result_base + ".stability.tsv";
}

std::string cluster_pairs_path(const std::string& result_base) {
    return result_base + ".cluster_pairs.tsv";
}

std::string onto_base(const Options& options) {
    return options.out_dir + options.name + "_onto" + options.suffix;
}

std::string comparison_path(const Options& options) {
    return options.out_dir + options.name + "_tsne_comparison" + options.suffix + ".html";
}

std::vector<std::string> result_files(const Options& options,
                                      const std::vector<double>& perplexities) {
    if (!options.onto.empty()) {
        return onto_files(options);
    }
    std::vector<std::string> files;
    for (const double perplexity : perplexities) {
        const std::string base = result_base(options, perplexity);
        const auto add = [&](bool is_wanted, const std::string& path) {
            if (is_wanted) {
                files.push_back(path);
            }
        };
        add(true, base + ".csv");
        for (const char* const extension : {".html", ".gp", ".png", ".svg"}) {
            add(options.plots, base + extension);
        }
        add(options.coordinates_tsv, base + ".tsv");
        add(options.coordinates_npy, base + ".npy");
        add(options.annotated_tsv, annotated_path(base));
        add(options.clusters, clusters_path(base));
        add(options.reliability, reliability_path(base));
        add(options.stability > 0, stability_path(base));
        add(options.stability > 0 && options.clusters, cluster_pairs_path(base));
        for (const char* const extension : {".gp", ".png", ".svg"}) {
            add(options.plot_cost, cost_base(base) + extension);
        }
    }
    if (perplexities.size() > 1) {
        files.push_back(comparison_path(options));
    }
    if (!options.model.empty()) {
        files.push_back(options.model);
    }
    if (!options.report_file.empty()) {
        files.push_back(options.report_file);
    }
    return files;
}

void check_result_names(const Options& options, const std::vector<double>& perplexities) {
    constexpr std::size_t kLongestName = 255;
    std::set<std::string> paths;
    for (const std::string& path : result_files(options, perplexities)) {
        const std::string name = std::filesystem::path(path).filename().string();
        if (name.size() > kLongestName) {
            throw InputError("the name of a result is too long: " + name +
                             "\nGive a shorter one with --name and --suffix.");
        }
        if (!paths.insert(path).second) {
            throw InputError("two results would be called " + name +
                             "\nNames tell perplexities apart by their first decimal: give the "
                             "runs different ones, or different suffixes with --suffix.");
        }
        spare_input(options, path);
    }
}

void prepare_directory(const std::string& directory) {
    std::filesystem::create_directories(directory);
    if (!may_write(directory)) {
        throw std::system_error(errno, std::generic_category(), "cannot write in " + directory);
    }
}

void prepare_results(const Options& options, double perplexity) {
    std::vector<std::string> files = result_files(options, {perplexity});
    files.push_back(options.out_dir + options.name + ".log");
    const bool has_figure = options.plots || options.plot_cost;
    if (has_figure || !std::all_of(files.begin(), files.end(), &may_write)) {
        prepare_directory(options.out_dir);
    }
}

void prepare_place(const std::string& path) {
    if (!may_write(path)) {
        prepare_directory(std::filesystem::absolute(path).parent_path().string());
    }
}

}  // namespace ovik::tool
