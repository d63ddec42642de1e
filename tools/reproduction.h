#pragma once

#include <memory>
#include <string>
#include <vector>

#include "input/load.h"
#include "stats/cached_neighbours.h"
#include "stats/fit_options.h"
#include "util/platform.h"

#include "tools/exit_status.h"
#include "tools/options.h"
#include "tools/reported_call.h"

/// The call of a report, made once more: whether its maps come out bit for bit.

namespace ovik::tool {

/// Holds a matrix against that of the report, before anything is computed.
///
/// @throws DifferenceFound if it has another shape or other values
void check_reported_values(const ReportedCall& reported, const LoadedMatrix& loaded);

/// Holds the options of the fit, as they came out for the matrix, against those of the report.
///
/// @throws DifferenceFound if this version gives one of them another meaning or none
void check_reported_options(const ReportedCall& reported, const Options& options);

/// What makes the bits of a map other ones, the likeliest first; a sentence each.
///
/// @param here  this version's name and what it runs on
std::vector<std::string> likely_causes(const ReportedCall& reported,
                                       const std::string& version,
                                       const Platform& here,
                                       NumericsKind numerics);

/// Where the costs of two runs part.
///
/// @return "the costs are the same up to iteration 31" and the like
std::string costs_text(const std::vector<double>& reported, const std::vector<double>& now);

/// Fits the maps of the report in memory and says of each whether it is equal; writes no file.
///
/// @param neighbours  given in the place of a search, or null
/// @return `Success` if all is equal, else `Different`; the status of a signal that ended it
ExitStatus reproduce_maps(LoadedMatrix loaded,
                          const std::vector<double>& perplexities,
                          const std::shared_ptr<CachedNeighbours>& neighbours,
                          const Options& options,
                          const ReportedCall& reported);

}  // namespace ovik::tool
