#pragma once

#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "plots/plot_outcome.h"
#include "results/run_record.h"

/// Saying what became of the files of a run, and listing them for its report.

namespace ovik::tool {

/// Why a file could not be written, in words; empty if it was.
std::string message_of(std::error_code failure);

/// Does something that the other results are not to be lost for.
///
/// @return what it threw, in words; empty for nothing
std::string failure_of(const std::function<void()>& work);

/// Whether all files were written.
bool are_there(const std::vector<ResultFile>& files);

/// Lists a file, and says where it is or why it is missing.
///
/// @param failure  empty if it is there
void add_result(std::vector<ResultFile>& files,
                const std::string& what,
                const std::string& path,
                const std::string& failure);

void add_result(std::vector<ResultFile>& files,
                const std::string& what,
                const std::string& path,
                std::error_code failure);

/// Names the pictures of a figure, as far as there is one.
///
/// @param base  their path without the extensions
void add_figure(std::vector<ResultFile>& files,
                const std::string& what,
                const std::string& base,
                FigureOutcome outcome);

}  // namespace ovik::tool
