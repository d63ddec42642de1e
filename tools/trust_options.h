#pragma once

#include <cstddef>

#include "tools/options.h"

namespace ovik::tool {

/// Refuses questions about single rows that a matrix is too small for.
///
/// @throws InputError if there are fewer than 30 rows, and some of the command line's options are
/// about how far each can be trusted; if columns are to be drawn anew, and there are fewer than
/// `kFewestDrawnColumns`, or components stand for them
void check_judged_rows(const Options& options, std::size_t rows, std::size_t columns);

/// Refuses what does not go with maps of noise.
///
/// @throws InputError if `--against-noise` cannot shuffle, or not embed by the same options
void check_noise_options(const Options& options);

}  // namespace ovik::tool
