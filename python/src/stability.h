#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

#include "results/recorded_stability.h"
#include "stats/fit_options.h"
#include "util/matrix_view.h"

namespace ovik::python {

/// Compares a map with others from other seeds and of other columns, as the command does.
///
/// @param points          as they were given to the fit
/// @param map             of these
/// @param count           of maps of both kinds
/// @param clusters        of each row, from 0; empty for none
/// @param is_interrupted  looked at after each iteration; if set, the comparison is given up
/// @throws what `varied_maps` throws; std::runtime_error if it is given up
RecordedStability compare_with_others(MatrixView<const double> points,
                                      MatrixView<const double> map,
                                      const FitOptions& options,
                                      std::size_t count,
                                      std::span<const std::uint32_t> clusters,
                                      const std::atomic<bool>& is_interrupted);

}  // namespace ovik::python
