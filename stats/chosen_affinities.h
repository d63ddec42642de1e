#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "stats/dense_affinities.h"
#include "stats/fit_options.h"
#include "stats/row_affinities.h"

/// The affinities that the options of a fit choose: of one perplexity, the mean over several
/// (`multiscale`), or uniform ones.

namespace ovik {

/// Whether the options choose affinities of one perplexity, so that `perplexity` is of effect.
bool has_perplexity(const FitOptions& options);

/// How many neighbours of each of N rows sparse affinities have: `neighbours` of uniform ones, else
/// `neighbour_count` of the largest perplexity; the N - 1 that there are if that is less.
int affinity_neighbours(const FitOptions& options, std::size_t N);

/// Sparse rows for N points: each perplexity has its own number of neighbours.
std::unique_ptr<RowAffinities> chosen_rows(const FitOptions& options, std::size_t N);

/// Dense rows. Uniform affinities are to the same neighbours as sparse ones.
DenseRow chosen_dense_row(const FitOptions& options);

/// The affinities in words: "perplexity 12.5", "perplexities 10 and 50", "uniform affinities to 15
/// neighbours".
std::string affinities_text(const FitOptions& options);

/// The stem of the files of a run: `result_table_stem` of the perplexity; of several perplexities
/// "tsne_10_0-50_0", of uniform affinities "tsne_k15", and the suffix.
std::string result_stem(const FitOptions& options, const std::string& suffix);

}  // namespace ovik
