#pragma once

#include <string>
#include <utility>
#include <vector>

#include "results/run_report.h"
#include "util/stopwatch.h"

#include "tools/exit_status.h"
#include "tools/options.h"

namespace ovik::tool {

/// Names of the options of a run and their values as JSON: null for those that have no effect
/// beside others. The perplexity is left to the runs.
std::vector<std::pair<std::string, std::string>> reported_options(const Options& options);

/// A report that says what was called, with which options, and when: now.
RunReport begin_report(const Options& options, std::vector<std::string> command_line);

/// Writes the report and says where it is.
///
/// @return false if it could not be written; standard error then says why
bool write_report(const std::string& path, const RunReport& report);

/// Ends the report of a call, and writes it where one is asked for: what the call came to, how long
/// it took, and the most memory that it had at a time.
///
/// @param path    of the report; empty for none
/// @param status  what the call comes to but for its report
/// @return that, or `FailedRun` where the report could not be written
ExitStatus end_report(const std::string& path,
                      RunReport& report,
                      ExitStatus status,
                      Stopwatch since_start);

}  // namespace ovik::tool
