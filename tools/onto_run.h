#pragma once

#include "results/run_report.h"
#include "util/stopwatch.h"

#include "tools/exit_status.h"
#include "tools/options.h"

namespace ovik::tool {

/// Places the rows of a matrix on the map of a model, writes table, page and figure, and says on
/// the console what became of them.
///
/// @param report       what is known of the call
/// @param since_start  runs since the command began
/// @throws InputError before anything is written if model, matrix and options do not fit together
ExitStatus place_onto(const Options& options, RunReport report, Stopwatch since_start);

}  // namespace ovik::tool
