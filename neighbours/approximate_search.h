#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "neighbours/metric.h"
#include "neighbours/near_row.h"
#include "neighbours/neighbour_recall.h"
#include "util/stage.h"

namespace ovik {

/// Whether `find_approximately` can be asked for all nearest rows of a matrix: not where values are
/// so many in a row (more than 8380), so large or so small, or rows so few, that it cannot work.
///
/// @param points  row-major, N x dims
/// @param count   rows that are wanted for each, itself among them
bool can_be_approximate(
    const double* points, std::size_t N, std::size_t dims, std::size_t count, const Metric& metric);

/// Finds nearly all of the nearest neighbours of each row of a matrix. Random-projection trees give
/// the first neighbours: rows in a leaf are compared with one another. Then, in rounds, rows that
/// are neighbours of a row are compared with one another, until few find nearer ones.
///
/// Every round draws from the lists of the round before, and lists hold the nearest of all that
/// were compared, at equal distance the lower row: the result is the same for any number of threads
/// and any instruction set. Distances are those of the metric to the last bit.
///
/// @param points       row-major, N x dims, with a `packable_extent`
/// @param count        neighbours of a row, 1 to N - 1
/// @param on_stage     takes how far the search is, and may end it by an exception; may be empty
/// @param visit        is given each row, its neighbours without itself, nearest first, of equally
///                     near ones the lower first, and the worker that calls (side by side with
///                     others): below `worker_count(N)`. There are fewer than `count` where fewer
///                     were met, of which `recall` tells
/// @return the recall on a thousand rows drawn at random, all if there are not more
/// @throws what `on_stage` throws
/// @par Source Dong, Moses and Li, "Efficient k-nearest neighbor graph construction for generic
/// similarity measures", WWW 2011
NeighbourRecall find_approximately(
    const double* points,
    std::size_t N,
    std::size_t dims,
    std::size_t count,
    const Metric& metric,
    const OnStage& on_stage,
    const std::function<
        void(std::size_t row, std::span<const NearRow> neighbours, std::size_t worker)>& visit);

/// The bytes that the search takes at most beside the matrix, but for what each thread has.
///
/// @param count  neighbours of a row
double approximate_search_memory(std::size_t N, std::size_t count);

}  // namespace ovik
