#pragma once

#include <cstddef>
#include <vector>

#include "tests/plain/plain_tsne.h"

/// Affinities other than those of one perplexity, as plainly as they can be written. Points have no
/// neighbours at equal distance.
namespace plain {

/// 1 / K to the K nearest others, nearest first.
SparseRows uniform_similarities(const std::vector<double>& points,
                                std::size_t N,
                                std::size_t dims,
                                std::size_t K);

/// The mean over several perplexities, each over three times as many nearest others; nearest first,
/// over the neighbours of the largest perplexity.
SparseRows multiscale_similarities(const std::vector<double>& points,
                                   std::size_t N,
                                   std::size_t dims,
                                   const std::vector<double>& perplexities);

/// The mean over several perplexities, of all pairs, N x N.
std::vector<double> dense_multiscale_similarities(const std::vector<double>& points,
                                                  std::size_t N,
                                                  std::size_t dims,
                                                  const std::vector<double>& perplexities);

/// Sparse rows as a matrix with a tiny diagonal, N x N.
std::vector<double> dense_rows(const SparseRows& rows);

}  // namespace plain
