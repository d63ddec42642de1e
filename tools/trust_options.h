#pragma once

#include <cstddef>

#include "util/matrix_view.h"

#include "tools/options.h"

namespace ovik::tool {

/// Refuses questions about single rows that a matrix is too small for.
///
/// @throws InputError if there are fewer than 30 rows, and some of the command line's options are
/// about how far each can be trusted; if columns are to be drawn anew, and there are fewer than
/// `kFewestDrawnColumns`, or components stand for them
void check_judged_rows(const Options& options, std::size_t rows, std::size_t columns);

/// Leaves drawn columns out where a perplexity is to be chosen and there are too few of them, and
/// says so.
void settle_drawn_columns(Options& options, std::size_t columns);

/// Refuses perplexities that cannot be judged.
///
/// @throws InputError if the options of the fit have none, start from given places, or if one is
/// more than a third of the other rows
void check_chosen_perplexities(const Options& options, std::size_t rows);

/// Refuses what does not go with maps of noise.
///
/// @throws InputError if `--against-noise` cannot shuffle, or not embed by the same options
void check_noise_options(const Options& options);

/// Refuses to shuffle columns where the metric cannot compare some rows of noise.
///
/// @param X  the matrix as it was loaded
/// @throws InputError if so
void check_shuffled_rows(const Options& options, MatrixView<const double> X);

/// Refuses to draw columns by which the metric cannot compare some rows, whichever seed's map is
/// kept.
///
/// @param X  the matrix as it was loaded
/// @throws InputError if so
void check_drawn_rows(const Options& options, MatrixView<const double> X);

/// All that a matrix can be refused for by questions of trust.
///
/// @param options  after `settle_drawn_columns`
/// @param X        the matrix as it was loaded
/// @throws InputError as the checks above do
void check_trust(const Options& options, MatrixView<const double> X);

}  // namespace ovik::tool
