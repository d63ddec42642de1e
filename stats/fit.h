#pragma once

#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "neighbours/neighbour_graph.h"
#include "neighbours/neighbour_recall.h"
#include "stats/fit_notes.h"
#include "stats/fit_options.h"
#include "stats/fit_state.h"
#include "stats/input_scale.h"
#include "stats/run_times.h"
#include "stats/sample_report.h"
#include "stats/seed_report.h"
#include "util/api.h"
#include "util/matrix_view.h"
#include "util/stage.h"

namespace ovik {

class CachedNeighbours;
struct Method;
class RandomStream;
class Ranks;

/// What a fit takes from, and gives to, its surroundings. Nothing of it changes a number of the
/// result but `start`, and `resumed_state`, which takes the place of any start.
struct FitHooks {
    FitNotes on_note = {};
    /// Takes the message about the joint affinities, once they are there.
    std::function<void(const std::string& message)> on_similarities = {};
    /// Takes how far the stages of the fit are.
    OnStage on_stage = {};
    /// Called after each iteration; false ends the fit there. An exception ends it, too, and leaves
    /// `fit`.
    std::function<bool(const FitState&)> on_iteration = {};
    /// The same of the fit of a sample with which the start `StartKind::Sample` begins: after false
    /// the rows start at what that fit has reached. `on_stage` is told how far it is, too.
    std::function<bool(const FitState&)> on_sample_iteration = {};
    /// Is told of that fit when it has ended.
    std::function<void(const SampleReport& sample)> on_sample = {};
    /// Is given the share of the variance that principal components keep, if they stand for the
    /// columns, before neighbours are searched for.
    std::function<void(double share)> on_components = {};
    /// Where the rows start if the options say `StartKind::Given`, else not looked at: rows x
    /// output dimensions. A row of NaN starts at the median of its neighbours (`start_at_places`).
    MatrixView<const double> start = {};
    /// Null, or the state of an earlier fit of the same matrix and options to go on from.
    const FitState* resumed_state = nullptr;
    /// Null, or the neighbours that fits of one matrix share, several at once if need be, or that
    /// were given in the place of a search; not used by the exact method, nor where the input holds
    /// distances.
    CachedNeighbours* cached_neighbours = nullptr;
    /// Is given the recall of a search for neighbours that is not exact.
    std::function<void(const NeighbourRecall& recall)> on_recall = {};
    /// Whether the neighbours of the rows are wanted in the result.
    bool wants_neighbours = false;
    /// Whether the cost and the misfit of each row are.
    bool wants_row_costs = false;
    /// Null, or the ranks that share the fit, of which this is the first, and the others serve it
    /// (`stats/shared_fit.h`). Then the method is the mesh, and there are no cached neighbours.
    Ranks* ranks = nullptr;
};

/// What a fit comes to, beside the embedding.
struct FitReport {
    /// The iteration done last.
    IterationReport reached;
    /// Of every iteration done, as it was reported: until early exaggeration ends, against the
    /// exaggerated affinities, but in the annealed schedule.
    std::vector<double> costs;
    /// Of the embedding, against the affinities without exaggeration.
    double final_cost = 0.0;
    /// What each row adds to that, by its own affinities; empty unless `wants_row_costs`.
    std::vector<double> row_costs = {};
    /// How far the similarities of each row on the map are from its affinities, whatever the row
    /// weighs in the cost; empty unless `wants_row_costs`. With both brought to the sum 1 their
    /// Kullback-Leibler divergence, in nats: 0 where they are alike.
    std::vector<double> row_misfits = {};
    /// How the input was centred and scaled; without means where it holds distances.
    InputScale scale;
    /// What is unusual about the places of a start that was given (`FitHooks::start`); mostly
    /// empty.
    std::string start_remark;
    /// The share of the variance that principal components keep, if they stand for the columns.
    std::optional<double> variance_kept;
    /// Empty unless `wants_neighbours`, and where the method searches for none.
    NeighbourGraph neighbours;
    /// How many of the nearest neighbours were found; nothing where the search is exact, or none is
    /// made.
    std::optional<NeighbourRecall> recall;
    /// Whether an approximate search was wanted, and the exact one made: the rows do not bear it.
    bool search_became_exact = false;
    /// Of the start by a sample; none of others, nor where a fit is resumed.
    std::optional<SampleReport> sample;
    RunTimes seconds;
    /// Processor time of the iterations, without those of a sample, in the units of `std::clock`.
    std::clock_t fitting_clock = 0;
    /// Of several seeds (`stats/seed_fits.h`); none of a fit by itself.
    std::optional<SeedReport> seeds = {};
};

/// A map, and how it came about.
struct Fit {
    /// Row-major, rows x output dimensions.
    std::vector<double> embedding;
    FitReport report;
};

/// Embeds the rows of a matrix by t-SNE. Reads no file, writes none and prints nothing.
///
/// The random start, and the tree of the neighbour search, are drawn from a stream of the fit's
/// own, which gives the numbers of `rand` after `srand` with the seed. Several threads may fit at
/// once, each with arrays and hooks of its own. The result is the same for any number of threads.
///
/// @param X        brought into the form of the metric (`prepare_rows`), then centred and scaled
///                 (`centre_and_scale`), in place; under the metric `Precomputed` the distances of
///                 all rows from all rows, which stay as they are
/// @param options  `out_dims` not negative
/// @param Y        the embedding, X.rows x out_dims, written
/// @throws WorkMemoryError (a std::bad_alloc) if a work array does not fit in memory
/// @throws InputError if the metric cannot compare the rows, or X holds no distances where it is
/// `Precomputed`
/// @throws std::length_error if there are more than 2^32 - 1 similarities
/// @throws std::invalid_argument if `resumed_state` is of another shape than Y, there are to be
/// more principal components than rows or columns, or several ranks are to share what they cannot
/// @throws InputError if the start is `Given`, and `start` is of another shape than Y or not
/// finite; if it keeps the map flat, as principal components do along which rows do not vary
/// @par Source van der Maaten and Hinton, "Visualizing data using t-SNE", JMLR 9:2579, 2008;
/// van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014
OVIK_API FitReport fit_into(MatrixView<double> Y,
                            MatrixView<double> X,
                            const FitOptions& options,
                            const FitHooks& hooks = {});

/// The same with a method that may not be in the list (`stats/method.h`), for those who try one.
///
/// @param random  null for a stream of the fit's own
FitReport fit_into(MatrixView<double> Y,
                   MatrixView<double> X,
                   const FitOptions& options,
                   const FitHooks& hooks,
                   const Method& method,
                   RandomStream* random = nullptr);

/// The same with an embedding of its own.
///
/// @throws std::length_error if `out_dims` is negative
OVIK_API Fit fit(MatrixView<double> X, const FitOptions& options, const FitHooks& hooks = {});

}  // namespace ovik
