#pragma once

#include <string>
#include <vector>

#include "tools/options.h"

/// What the files of a run are called.

namespace ovik::tool {

/// The path of table and plots of a run without their extensions.
std::string result_base(const Options& options, double perplexity);

/// The path of the drawing of the costs without its extensions.
std::string cost_base(const std::string& result_base);

/// The path of the annotated table.
std::string annotated_path(const std::string& result_base);

/// The path of the table of clusters.
std::string clusters_path(const std::string& result_base);

/// The path of the table of how far each row can be trusted.
std::string reliability_path(const std::string& result_base);

/// The paths of the tables of how far the place of each row stays, and of clusters that stay apart.
std::string stability_path(const std::string& result_base);
std::string cluster_pairs_path(const std::string& result_base);

/// The path of table and plots of rows that are placed on a map, without their extensions.
std::string onto_base(const Options& options);

/// The page on which runs are compared.
std::string comparison_path(const Options& options);

/// All files that a run of each perplexity writes but for the run log, or that placing rows on a
/// map writes.
std::vector<std::string> result_files(const Options& options,
                                      const std::vector<double>& perplexities);

/// @throws InputError if a name is too long for a directory to hold, if two results share theirs,
/// or if one would take the place of a file that the run reads
void check_result_names(const Options& options, const std::vector<double>& perplexities);

/// @throws InputError if a result would take the place of a file that the command reads
void spare_input(const Options& options, const std::string& result);

/// Makes a directory for results.
///
/// @throws std::filesystem::filesystem_error, std::system_error if results cannot be put there
void prepare_directory(const std::string& directory);

/// Makes the directory of the results of a run. One that may not be written in will do if all of
/// them are there and may be written, and no figure is to be drawn, which takes a directory.
///
/// @throws std::filesystem::filesystem_error, std::system_error if results cannot be put there
void prepare_results(const Options& options, double perplexity);

/// Makes the directory of a file, unless the file is there and may be written: that may be a pipe,
/// or "/dev/stdout".
///
/// @throws std::filesystem::filesystem_error, std::system_error if it cannot be put there
void prepare_place(const std::string& path);

}  // namespace ovik::tool
