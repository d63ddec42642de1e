#pragma once

#include <string>
#include <utility>
#include <vector>

#include "stats/fit.h"

namespace ovik {

/// Names and values of a run's parameters, as chart page and figure show them.
///
/// @param rows, columns    of the input
/// @param report           of the fit with these options
/// @param transformations  what was done to the input before the fit; empty for nothing
std::vector<std::pair<std::string, std::string>> caption_parameters(
    const FitOptions& options,
    std::size_t rows,
    std::size_t columns,
    const FitReport& report,
    const std::string& transformations = {});

}  // namespace ovik
