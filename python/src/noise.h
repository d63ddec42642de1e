#pragma once

#include <atomic>
#include <cstddef>

#include "results/row_reliability.h"
#include "stats/fit_options.h"
#include "stats/noise_comparison.h"
#include "util/matrix_view.h"

namespace ovik::python {

/// Compares the rows of a map with those of noise, as the command does.
///
/// @param points          as they were given to the fit
/// @param fits            of the rows of the map; their concentration is found here
/// @param neighbours      how many nearest ones are kept of
/// @param count           of matrices of noise
/// @param is_interrupted  looked at again and again; if set, the comparison is given up
/// @return columns alone
/// @throws what `noise_fits` throws; std::runtime_error if it is given up
RowReliability compare_with_noise(MatrixView<const double> points,
                                  RowFits fits,
                                  const FitOptions& options,
                                  std::size_t neighbours,
                                  std::size_t count,
                                  const std::atomic<bool>& is_interrupted);

}  // namespace ovik::python
