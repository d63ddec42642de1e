#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "neighbours/neighbour_graph.h"
#include "stats/fit_options.h"
#include "stats/fit_state.h"
#include "stats/sample_report.h"
#include "util/matrix_view.h"
#include "util/stage.h"

/// The start of a large map by the map of a sample of its rows. The result is the same for any
/// number of threads.

namespace ovik {

class Ranks;

/// Fewer rows need no sample: one that tells of the whole would be half of them or more.
constexpr std::size_t kLeastSampledFrom = 2000;

/// How many of some rows are the sample: a tenth, at least 1,000 and at most 100,000.
std::size_t sample_size(std::size_t rows);

/// Draws the sample of some rows: as many as `sample_size` says, each set of so many as likely as
/// any other. Row after row is taken if the number that is drawn for it, 0 to 2^31 - 1, times the
/// rows that are left is below 2^31 times those that are still wanted.
///
/// @param rows  at least `kLeastSampledFrom`
/// @param seed  of a stream of its own with the numbers of `rand`
/// @return in ascending order
std::vector<std::uint32_t> sampled_rows(std::size_t rows, int seed);

/// The options by which the sample is embedded: those of the fit, along principal components at the
/// start, of the rows as they come, with perplexities of at most a third of the other rows.
FitOptions options_of_sample(const FitOptions& options, std::size_t sample_size);

/// Gives a place to rows that have none: the median, coordinate by coordinate, of those of their
/// nearest neighbours that have one, of the first `kPlacingNeighbours` of these. Rows whose
/// neighbours have none wait for the round in which some have; those that no round reaches get the
/// median of all that had a place from the start.
///
/// @param Y          rows x output dimensions; places of rows without one are written
/// @param has_place  for each row
/// @param graph      neighbours of the rows, nearest first
void place_among_neighbours(MatrixView<double> Y,
                            std::vector<char> has_place,
                            const NeighbourGraph& graph);

/// What the fit of a sample takes from, and gives to, its surroundings.
struct SampleHooks {
    /// Is told of all of that fit as of `Stage::Sample`; an exception ends it.
    OnStage on_stage = {};
    /// As `FitHooks::on_iteration`: false ends that fit, and its map is what it has reached.
    std::function<bool(const FitState&)> on_iteration = {};
    /// As `FitHooks::ranks`.
    Ranks* ranks = nullptr;
};

/// Starts at the map of a sample, all other rows among their neighbours (`place_among_neighbours`),
/// all times one factor with which the widest coordinate has the standard deviation
/// `options.start_spread`, of rows - 1 degrees of freedom.
///
/// @param Y      written
/// @param X      the rows as the method sees them: their distances are Euclidean
/// @param graph  neighbours of the rows, nearest first
/// @return what the fit of the sample came to
/// @throws what a hook throws
/// @throws InputError if there are fewer than `kLeastSampledFrom` rows, if the sample varies along
/// fewer components than Y has columns, or if its map has no extent that is a number
SampleReport start_from_sample(MatrixView<double> Y,
                               MatrixView<const double> X,
                               const FitOptions& options,
                               const NeighbourGraph& graph,
                               const SampleHooks& hooks = {});

}  // namespace ovik
