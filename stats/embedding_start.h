#pragma once

#include <cstddef>
#include <string>

#include "neighbours/neighbour_graph.h"
#include "neighbours/search_manner.h"
#include "stats/fit_choices.h"
#include "stats/median_place.h"
#include "stats/principal_components.h"
#include "util/matrix_view.h"

/// Starts of an embedding other than the random one (`stats/normal_deviates.h`). The result is the
/// same for any number of threads.

namespace ovik {

/// Starts along the first principal components of the rows, all times one factor, with which the
/// first has the standard deviation `spread`, of rows - 1 degrees of freedom.
///
/// @param Y           written; no more columns than there are components
/// @param components  of the rows of Y
/// @throws InputError if the rows vary along fewer components than Y has columns: the map would
/// stay flat
void start_along_components(MatrixView<double> Y,
                            const PrincipalComponents& components,
                            double spread);

/// Whether a row is without a place, which NaN stands for.
///
/// @param places  rows x output dimensions
/// @throws InputError if some coordinates of a row are there and others are not, or one is
/// infinite
bool has_rows_without_place(MatrixView<const double> places);

/// From here on points at given places stand too far apart to move in any run that ends.
constexpr double kLargestExtent = 1e10;

/// How far the farthest of the places lies from the mean of all, along any one coordinate; rows
/// without a place do not count. 0 for no places.
double extent_of_places(MatrixView<const double> places);

/// What there is to say of places that are so far apart, more than 1000 from their mean, that
/// points hardly move from them: a sentence without a full stop, with the number that they should
/// be divided by; empty for nothing.
std::string extent_remark(MatrixView<const double> places);

/// Starts at given places, as they stand.
///
/// A row without a place gets the median, coordinate by coordinate, of those of its nearest
/// neighbours that have one, of the first `kPlacingNeighbours`; where none has, of all rows that
/// have one. Of an even number of values the median is the mean of the two in the middle.
///
/// @param Y       written
/// @param places  of the shape of Y; NaN where a row has none
/// @param graph   neighbours of the rows, nearest first; not looked at if all rows have a place
/// @throws InputError if a coordinate is the same in all rows, or the places lie within a millionth
/// of their extent of a line, or a plane, of fewer dimensions: the map could not leave it;
/// if they lie more than `kLargestExtent` from their mean
void start_at_places(MatrixView<double> Y,
                     MatrixView<const double> places,
                     const NeighbourGraph& graph);

/// The `count` nearest neighbours of all rows, or all others if there are fewer, for methods that
/// search for none.
///
/// @param X       the rows, or, if the metric is `Precomputed`, their distances, rows x rows
/// @param metric  others than `Precomputed` are Euclidean between rows as X has them
/// @param ties    of rows; distances that are given have them by row
NeighbourGraph placing_neighbours(MatrixView<const double> X,
                                  MetricKind metric,
                                  NeighbourTies ties,
                                  std::size_t count = kPlacingNeighbours);

}  // namespace ovik
