#pragma once

#include <string>

#include "stats/fit_options.h"
#include "util/api.h"

/// What a run is called by the neighbourhoods of its rows: a perplexity, several in one, or a
/// number of neighbours.

namespace ovik {

/// For readers: "perplexity = 30.0", "perplexities = 10, 50", "uniform affinities of 15
/// neighbours".
///
/// @param digits  of a perplexity by itself behind its point; the rest is cut
std::string neighbourhood_text(const FitOptions& options, int digits);

/// What a run has chosen that the classical run has not: "metric pearson, learning-rate auto";
/// empty for the classical run with any numbers.
std::string choices_text(const FitOptions& options);

/// The stem of the names of the results: "tsne_30_0", "tsne_10_0_50_0", "tsne_uniform_15".
///
/// @param suffix  put behind it
OVIK_API std::string result_stem(const FitOptions& options, const std::string& suffix);

}  // namespace ovik
