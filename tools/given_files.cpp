#include "tools/given_files.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "util/input_file.h"

namespace ovik::tool {

namespace {

/// Calls `visit` with the name of each option and its path in the options.
template <typename AnyOptions, typename Visitor>
void visit_paths(AnyOptions& options, const Visitor& visit) {
    visit("row-names", options.load.row_names_file);
    visit("neighbours-from", options.neighbours_file);
    visit("start", options.start_file);
}

/// A pipe would be empty by the time that the run reads it.
std::optional<Digest> digest_of_file(const std::string& path) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure)) {
        return std::nullopt;
    }
    try {
        std::ifstream file = open_input_file(path);
        return file.is_open() ? std::optional(digest_of(file)) : std::nullopt;
    } catch (const std::ios_base::failure&) {
        return std::nullopt;
    }
}

}  // namespace

std::vector<GivenFile> given_files(const Options& options) {
    std::vector<GivenFile> files;
    visit_paths(options, [&files](const char* option, const std::string& path) {
        if (!path.empty()) {
            files.push_back({option, path, digest_of_file(path)});
        }
    });
    return files;
}

void replace_given_file(Options& options, const std::string& option, const std::string& path) {
    visit_paths(options, [&](const char* name, std::string& old_path) {
        if (option == name) {
            old_path = path;
        }
    });
}

}  // namespace ovik::tool
