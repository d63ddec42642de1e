#pragma once

#include <cstddef>
#include <vector>

#include "tests/plain/plain_components.h"

/// Starts of an embedding as plain one-thread programs: the yardstick for the engine, with which
/// they share no code. Matrices are row-major.
namespace plain {

/// A start along the first components: all of them times one factor, with which the first has the
/// standard deviation `spread`.
///
/// @param count  of the components
std::vector<double> component_start(const Components& components,
                                    std::size_t count,
                                    std::size_t N,
                                    std::size_t no_dims,
                                    double spread);

/// A start at places, as they stand. Rows without a place (NaN) get the median of the nearest rows
/// that have one, among their 25 nearest, or else that of all.
///
/// @param points  N x dims, of which the neighbours are
/// @param places  N x no_dims
std::vector<double> start_at_places(const std::vector<double>& points,
                                    std::size_t N,
                                    std::size_t dims,
                                    const std::vector<double>& places,
                                    std::size_t no_dims);

/// The sample of some rows, by the numbers of `rand`: row after row is taken with the chance of
/// those still wanted among those that are left.
std::vector<std::size_t> sampled_rows(std::size_t N, unsigned int seed);

/// Rows without a place (NaN) get the median of the nearest 25 that have one, among their nearest
/// K, round after round; those that no round reaches the median of all places that are given.
///
/// @param points  N x dims, of which the neighbours are
/// @param places  N x no_dims
std::vector<double> placed_among_neighbours(const std::vector<double>& points,
                                            std::size_t N,
                                            std::size_t dims,
                                            std::vector<double> places,
                                            std::size_t no_dims,
                                            std::size_t K);

/// Places times one factor, with which the widest coordinate has the standard deviation `spread`.
std::vector<double> with_spread(std::vector<double> Y, std::size_t no_dims, double spread);

}  // namespace plain
