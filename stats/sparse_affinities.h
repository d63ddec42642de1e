#pragma once

#include <cstddef>
#include <optional>

#include "neighbours/neighbour_recall.h"
#include "neighbours/search_manner.h"
#include "stats/fit_notes.h"
#include "stats/sparse_matrix.h"
#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

class CachedNeighbours;
struct NeighbourGraph;
class RandomStream;
class RowAffinities;

/// What a search for neighbours takes from, and gives to, its surroundings.
struct NeighbourHooks {
    /// Is told `PerplexityAboveNeighbours`, `NeighbourIndexBuilt` and `SearchIsExact`.
    FitNotes notes = {};
    /// Null for a search from nothing, else neighbours of other runs over the same points, at least
    /// as many of each.
    CachedNeighbours* cached = nullptr;
    /// Null, or what takes the neighbours that are found.
    NeighbourGraph* graph = nullptr;
    /// Null for the process-wide `rand`, else where the tree of the search is drawn from.
    RandomStream* random = nullptr;
    /// Of the search; what it tells of are rows with their affinities.
    NeighbourSearchManner manner = {};
    /// Null, or what is told how many of the nearest were found, if the search is not exact.
    std::optional<NeighbourRecall>* recall = nullptr;
    /// Whether the graph is to have distances, which are 8 of 12 bytes of it.
    bool wants_distances = true;
};

/// Conditional affinities of every point to its nearest neighbours, each row calibrated to a
/// perplexity (at most 200 attempts) and normalised to sum 1.
///
/// The K + 1 nearest are asked of a vantage-point tree and the first, taken to be the point itself,
/// is skipped. Where a point has fewer neighbours (K is not below N, or distances are not finite)
/// the rest of its row points at the point itself with affinity 0.0. Queries are spread over the
/// cores. A perplexity above K is told of, and the work goes on.
///
/// @param points  row-major, N x dims
/// @param K       entries per row
/// @throws WorkMemoryError if the matrix does not fit in memory; a negative K asks for more than
/// there can be
/// @throws std::length_error if N * K exceeds the 32 bits of a row start
OVIK_API SparseMatrix neighbour_affinities(const double* points,
                                           std::size_t N,
                                           std::size_t dims,
                                           double perplexity,
                                           int K,
                                           const NeighbourHooks& hooks = {});

/// The same for the rows of a matrix.
inline SparseMatrix neighbour_affinities(MatrixView<const double> points,
                                         double perplexity,
                                         int K,
                                         const NeighbourHooks& hooks = {}) {
    return neighbour_affinities(points.values, points.rows, points.columns, perplexity, K, hooks);
}

/// Conditional affinities of every point to its nearest neighbours, of any kind; else as the
/// former.
///
/// @param rows  gives the affinities of a row
/// @param K     entries per row
/// @throws what `neighbour_affinities` throws
SparseMatrix conditional_affinities(MatrixView<const double> points,
                                    RowAffinities& rows,
                                    int K,
                                    const NeighbourHooks& hooks = {});

/// The symmetric form of a sparse matrix: (P(m|n) + P(n|m)) / 2 where one of the two is stored.
///
/// Row n lists, in the order in which rows 0, 1, ... bring them up, its own entries and those of
/// other rows that point at n.
///
/// @param P  columns are distinct within a row
/// @throws std::length_error if the result has more entries than a 32-bit row start can count
OVIK_API SparseMatrix symmetrized(const SparseMatrixView& P, std::size_t N);

}  // namespace ovik
