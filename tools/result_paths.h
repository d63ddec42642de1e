#pragma once

#include <string>
#include <vector>

#include "tools/options.h"

/// What the files of a run are called.

namespace ovik::tool {

/// The path of table and plots of a run without their extensions.
std::string result_base(const Options& options, double perplexity);

/// That of the drawing of the costs.
std::string cost_base(const std::string& result_base);

/// The page on which runs are compared.
std::string comparison_path(const Options& options);

/// All files that a run of each perplexity writes but for the run log.
std::vector<std::string> result_files(const Options& options,
                                      const std::vector<double>& perplexities);

/// @throws InputError if a name is too long for a directory to hold, or two runs share theirs
void check_result_names(const Options& options, const std::vector<double>& perplexities);

/// Makes the directory of the results.
///
/// @throws std::filesystem::filesystem_error, std::system_error if results cannot be put there
void prepare_directory(const std::string& directory);

}  // namespace ovik::tool
