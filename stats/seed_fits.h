#pragma once

#include <cstddef>

#include "stats/fit.h"
#include "util/api.h"

namespace ovik {

/// How many fits are made, and how.
struct SeedManner {
    /// At least 1: their seeds are that of the options and those that follow.
    int count = 5;
    /// Most fits that run side by side, each by one thread; 0 for as many as there are threads.
    std::size_t at_once = 0;
};

/// Fits one matrix from several seeds, keeps the map of lowest final cost, and tells how far the
/// maps agree: `FitReport::seeds`. The rest of the report is that of the fit that was kept, but for
/// the times, which are those of all.
///
/// All fits take the neighbours that the first one finds, by all threads. The others run side by
/// side in groups of `at_once`, each by one thread; those that fill no group run one after the
/// other by all threads. The result is the same for any number of threads: the map of each seed is
/// that of `fit_into` with this seed.
///
/// @param X      centred and scaled in place; a copy is made, and one more for each fit at once
/// @param hooks  `on_note`, `on_components` and `on_similarities` hear the first fit.
///               `on_iteration` is called with the states of all fits, by one thread at a time;
///               false ends all of them.
///               `resumed_state` is the start of all fits.
/// @throws std::invalid_argument if `count` is below 1, or a seed beyond the largest `int`
/// @throws what `fit_into` and the hooks throw
OVIK_API FitReport fit_seeds_into(MatrixView<double> Y,
                                  MatrixView<double> X,
                                  const FitOptions& options,
                                  const SeedManner& manner,
                                  const FitHooks& hooks = {});

}  // namespace ovik
