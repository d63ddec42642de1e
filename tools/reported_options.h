#pragma once

#include <nlohmann/json_fwd.hpp>

#include "stats/fit_options.h"

namespace ovik::tool {

/// The options of a fit as a report has them (`reported_options`), put in the place of those in
/// `options`. Those that the report lacks, or that had no effect, stay.
///
/// @param json  member `options` of a report
/// @throws nlohmann::json::exception if a value is of another kind
void read_reported_options(const nlohmann::json& json, FitOptions& options);

}  // namespace ovik::tool
