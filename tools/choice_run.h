#pragma once

#include <vector>

#include "input/load.h"
#include "results/label_column.h"
#include "results/run_report.h"
#include "util/stopwatch.h"

#include "tools/exit_status.h"
#include "tools/options.h"

namespace ovik::tool {

/// Judges the maps of several perplexities by many fits, recommends one of them, and writes table,
/// figure and page of the choice, the result table of each map, and the report.
///
/// Fits that have ended are kept in `kept_runs_path`, and not made again by a later call with the
/// same matrix and options of the fit. What is written follows from matrix and options alone.
///
/// @param labels        of the rows, by name; empty for those of the matrix, or none
/// @param perplexities  ascending
/// @param report        as `run_perplexities` takes it
/// @throws std::system_error if a fit cannot be kept
ExitStatus run_choice(LoadedMatrix loaded,
                      const std::vector<LabelColumn>& labels,
                      const std::vector<double>& perplexities,
                      const Options& options,
                      RunReport report,
                      Stopwatch since_start);

}  // namespace ovik::tool
