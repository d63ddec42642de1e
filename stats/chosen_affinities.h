#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "stats/dense_affinities.h"
#include "stats/fit_options.h"
#include "stats/row_affinities.h"

/// The affinities that the options of a fit choose: of one perplexity, the mean over several
/// (`multiscale`), or uniform ones.

namespace ovik {

/// The perplexities that affinities are calibrated to; none for uniform ones.
std::vector<double> perplexities_of(const FitOptions& options);

/// How many neighbours of each of N rows sparse affinities have: `neighbours` of uniform ones, else
/// `neighbour_count` of the largest perplexity; the N - 1 that there are if that is less.
int affinity_neighbours(const FitOptions& options, std::size_t N);

/// Sparse rows for N points: each perplexity has its own number of neighbours.
std::unique_ptr<RowAffinities> chosen_rows(const FitOptions& options, std::size_t N);

/// Dense rows. Uniform affinities are to the same neighbours as sparse ones.
DenseRow chosen_dense_row(const FitOptions& options);

}  // namespace ovik
