#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "results/run_record.h"
#include "stats/fit_options.h"

#include "tools/aligned_maps.h"

namespace ovik::tool {

/// A run of which a page tells beside others.
struct ComparisonEntry {
    /// What the data are.
    std::string title;
    std::size_t rows = 0;
    std::size_t columns = 0;
    /// The options of the fit, as far as a report has them.
    FitOptions options;
    RunRecord run;
    /// What the runs of equal values and names have in common; any text.
    std::string data;
    RunMap map;
    /// What relative paths of the run's files start from.
    std::filesystem::path directory;
    /// How many rows hold the same values as an earlier one.
    std::size_t duplicate_rows = 0;
    /// Path of the report that tells of it; empty if it has just ended.
    std::string report = {};
};

}  // namespace ovik::tool
