#include "tools/earlier_results.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "util/joined.h"

#include "tools/result_paths.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// All files that may stand beside the table of a map.
std::vector<std::string> companions(const std::string& base) {
    std::vector<std::string> files = {base + ".html",
                                      base + ".tsv",
                                      base + ".npy",
                                      annotated_path(base),
                                      clusters_path(base),
                                      reliability_path(base),
                                      stability_path(base),
                                      cluster_pairs_path(base)};
    for (const std::string& figure : {base, cost_base(base)}) {
        for (const char* const extension : {".png", ".svg", ".gp"}) {
            files.push_back(figure + extension);
        }
    }
    return files;
}

}  // namespace

std::vector<std::string> earlier_results(const std::string& base,
                                         const std::vector<ResultFile>& written) {
    std::vector<std::string> files = companions(base);
    std::erase_if(files, [&written](const std::string& path) {
        const bool is_of_this_run = std::any_of(
            written.begin(), written.end(), [&](const ResultFile& f) { return f.path == path; });
        std::error_code unknown;
        return is_of_this_run || !std::filesystem::exists(path, unknown);
    });
    return files;
}

void tell_of_earlier_results(const std::string& base, const std::vector<ResultFile>& written) {
    const std::vector<std::string> files = earlier_results(base, written);
    if (!files.empty()) {
        complain(
            "note: of an earlier run, not of this map: " + joined(files, ", ") +
            "\nRemove what you do not need, or give each run a --name or --suffix of its own.");
    }
}

}  // namespace ovik::tool
