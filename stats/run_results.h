#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "stats/fit.h"
#include "stats/fit_options.h"
#include "stats/result_settings.h"
#include "util/matrix_view.h"

namespace ovik {

/// A run that has ended, as its results show it.
struct EndedRun {
    /// Rows x output dimensions.
    MatrixView<const double> embedding;
    /// One per row.
    std::span<const std::string> names;
    /// Columns of the input.
    std::size_t input_columns;
    const FitOptions& options;
    const FitReport& report;
};

/// Writes the result table, then the record in the run log, then draws the plots. What cannot be
/// written costs no other result.
///
/// @param out_base      what table, log and figure are named after
/// @param before_plots  called when table and log are there, with the settings, of which the plots
///                      show what it adds; empty: nothing is called
/// @tparam T            the precision of the coordinates
template <typename T>
WrittenResults write_results(ResultSettings settings,
                             const std::string& out_base,
                             const EndedRun& run,
                             const std::function<void(ResultSettings&)>& before_plots = {});

}  // namespace ovik
