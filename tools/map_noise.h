#pragma once

#include <optional>

#include "results/row_reliability.h"
#include "results/run_record.h"
#include "stats/fit_options.h"
#include "stats/neighbourhood_quality.h"
#include "util/matrix_view.h"

#include "tools/options.h"

namespace ovik::tool {

/// Compares the rows of a map with those of noise (`--against-noise`), adds what comes of it to
/// what is known of them, and says it on the console.
///
/// @param fit          the options of the map
/// @param X            as it was loaded
/// @param quality      of the map, for the neighbours that are looked at
/// @param reliability  what is known of the rows, with their misfit
/// @return none if a signal has ended the run, which the console then says
/// @throws what `noise_fits` throws
std::optional<RecordedNoise> compare_with_noise(const Options& options,
                                                const FitOptions& fit,
                                                MatrixView<const double> X,
                                                const NeighbourhoodQuality& quality,
                                                RowReliability& reliability);

}  // namespace ovik::tool
