#pragma once

#include <string>
#include <utility>
#include <vector>

#include "results/run_report.h"
#include "util/stopwatch.h"

#include "tools/options.h"

namespace ovik::tool {

/// Names of the options of a run and their values as JSON: null for those that have no effect
/// beside others. The perplexity is left to the runs.
std::vector<std::pair<std::string, std::string>> reported_options(const Options& options);

/// A report that says what was called, with which options, and when: now.
RunReport begin_report(const Options& options, std::vector<std::string> command_line);

/// Fills in what the whole call took: its time, and the most memory that it had at a time.
void complete_report(RunReport& report, Stopwatch since_start);

/// Writes the report and says where it is.
///
/// @return false if it could not be written; standard error then says why
bool write_report(const std::string& path, const RunReport& report);

}  // namespace ovik::tool
