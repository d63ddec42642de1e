#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "neighbours/neighbour_lists.h"
#include "stats/fit_options.h"
#include "util/api.h"

namespace ovik {

class CachedNeighbours;

/// Reads a graph of neighbours in the Matrix Market exchange format, "coordinate real" or
/// "integer", plain or packed by gzip: entry (i, j) is the distance of row i from its neighbour j.
/// In a symmetric file every neighbour is mutual.
///
/// @param row_count  of the matrix whose neighbours they are
/// @throws InputError with line and cure: a file of another kind; a graph of other rows; what
/// `neighbour_lists` refuses
/// @throws std::system_error if the file cannot be read to its end
OVIK_API NeighbourLists read_neighbour_lists(const std::string& path, std::size_t row_count);

/// An object by which fits take neighbours that are given (`FitHooks::cached_neighbours`,
/// `TSNE::cached_neighbours`), several at once if need be.
///
/// @param lists  of the rows of the matrix: of `read_neighbour_lists` or `neighbour_lists`
OVIK_API std::shared_ptr<CachedNeighbours> make_given_neighbours(NeighbourLists lists);

/// Whether neighbours that are given do for a fit.
///
/// @param source  what messages call where they are from
/// @param first   from what they count rows
/// @param measures_quality  whether the map is held against the rows afterwards, by the metric
/// @return what there is to say of rows that have fewer neighbours than the fit takes, in a
/// sentence without a full stop; empty for nothing
/// @throws InputError with the cure if a row has not more of them than the perplexity asks for, if
/// the method that the options stand for has no use for neighbours, if an approximate search is
/// chosen where nothing is searched (a start by a sample searches in that), if principal components
/// are to stand for the columns, by which nothing is searched, or if a metric is chosen by which no
/// rows are compared: neither for a start along components nor for the quality
OVIK_API std::string check_given_neighbours(const NeighbourLists& lists,
                                            const FitOptions& options,
                                            const std::string& source,
                                            std::size_t first = 1,
                                            bool measures_quality = false);

}  // namespace ovik
