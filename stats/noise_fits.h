#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "stats/fit_options.h"
#include "stats/noise_comparison.h"
#include "util/api.h"
#include "util/matrix_view.h"
#include "util/stage.h"

/// Maps of noise: of a matrix whose values are shuffled within each column.

namespace ovik {

/// How maps of noise are made and looked at; nothing of it but `neighbours` changes a number.
struct NoiseManner {
    /// How many nearest neighbours of each row are looked at: at least 1, less than half the rows.
    std::size_t neighbours = 30;
    /// Most fits side by side; 0 for as many as there are threads.
    std::size_t at_once = 0;
    /// Asked again and again whether to go on, by several threads at once; may be empty.
    std::function<bool()> goes_on = {};
    /// Told of `Stage::Noise`, the iterations of all fits; may be empty. An exception ends them.
    OnStage on_stage = {};
};

/// Refuses a matrix of which maps of noise cannot be made.
///
/// @param X, options  as of `noise_fit`
/// @throws InputError if the metric cannot compare some rows of the noise of numbers 0 to
/// `count` - 1
OVIK_API void check_shuffles(MatrixView<const double> X,
                             const FitOptions& options,
                             std::size_t count);

/// Shuffles a matrix, embeds it, and looks at the map.
///
/// @param X        as it was loaded: neither prepared for a metric nor centred; copied
/// @param options  of the map that is compared with noise; its start is not `StartKind::Given`,
/// and its metric not `MetricKind::Precomputed`
/// @param number   of the noise matrix, from 0: the shuffle follows from the seed of the options
/// and this alone (`shuffle_columns`)
/// @return none if it was ended by `goes_on`
/// @throws what `fit` throws; InputError if the metric cannot compare a shuffled row, or the map is
/// not finite
OVIK_API std::optional<RowFits> noise_fit(MatrixView<const double> X,
                                          const FitOptions& options,
                                          std::size_t number,
                                          const NoiseManner& manner);

/// The maps of noise of numbers 0 to `count` - 1, side by side, each by one thread, as far as they
/// fill the threads, and else by all of them (`run_side_by_side`). The same for any number of
/// threads and of fits at once.
///
/// @return empty if they were ended by `goes_on`
OVIK_API std::vector<RowFits> noise_fits(MatrixView<const double> X,
                                         const FitOptions& options,
                                         std::size_t count,
                                         const NoiseManner& manner);

}  // namespace ovik
