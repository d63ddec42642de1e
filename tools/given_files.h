#pragma once

#include <string>
#include <vector>

#include "results/run_report.h"

#include "tools/options.h"

namespace ovik::tool {

/// The files that the command line gives beside the matrix and on which the map or the names of its
/// rows depend, with their digests: names of the rows, neighbours, coordinates of the start.
///
/// @return one each; without a digest for what is no plain file or cannot be read
std::vector<GivenFile> given_files(const Options& options);

/// Gives an option of `given_files` another path.
void replace_given_file(Options& options, const std::string& option, const std::string& path);

}  // namespace ovik::tool
