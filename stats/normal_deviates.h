#pragma once

#include <cstddef>

#include "stats/fit_options.h"
#include "util/api.h"
#include "util/elementary.h"

namespace ovik {

class RandomStream;

/// One standard normal deviate by the polar method, from the process-wide `rand` stream.
///
/// Each trial takes two values of `rand`; the second deviate of an accepted pair is discarded.
///
/// @par Source Marsaglia and Bray, "A convenient method for generating normal variables",
/// SIAM Review 6:260, 1964
OVIK_API double normal_deviate();

/// The same from another stream, by another logarithm.
double normal_deviate(RandomStream& random, RealFunction log);

/// Starts an embedding: sets every element, in index order, to a normal deviate times `spread`.
OVIK_API void draw_initial_embedding(double* Y,
                                     std::size_t count,
                                     double spread = FitOptions().start_spread);

/// The same from another stream, by another logarithm.
void draw_initial_embedding(
    double* Y, std::size_t count, double spread, RandomStream& random, RealFunction log);

}  // namespace ovik
