#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "stats/sparse_matrix.h"

namespace ovik {

/// The modularity of a partition of a weighted graph:
///
///     1 / (2m) * sum over communities c of (A_c - resolution * K_c^2 / (2m))
///
/// where A_c is the sum of the entries between members of c, K_c that of all entries of their rows,
/// and 2m that of all entries; 0 of a graph without weight. The sums are formed row by row.
///
/// @param graph        symmetric, N rows, entries not negative
/// @param communities  of each row, below N
/// @param resolution   1 is the modularity of Newman and Girvan; larger ones favour smaller
///                     communities
/// @par Source Newman, "Analysis of weighted networks", Phys. Rev. E 70:056131, 2004; Reichardt and
/// Bornholdt, "Statistical mechanics of community detection", Phys. Rev. E 74:016110, 2006
double modularity(const SparseMatrixView& graph,
                  std::span<const std::uint32_t> communities,
                  double resolution = 1.0);

}  // namespace ovik
