#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "neighbours/neighbour_lists.h"
#include "results/row_reliability.h"
#include "stats/fit.h"
#include "stats/neighbourhood_quality.h"

namespace ovik::python {

/// How a fit is made, beside its options.
struct FitManner {
    /// Number of threads; 0 for all cores.
    int threads = 0;
    /// Whether the engine's console lines show.
    bool verbose = false;
    /// The start, row-major, rows x output dimensions, NaN in rows that start among their
    /// neighbours; null for one that the fit makes.
    const double* start = nullptr;
    /// Null, or neighbours in the place of a search; they do for the fit.
    const NeighbourLists* neighbours = nullptr;
    /// How many nearest neighbours of each row the quality is measured for, less than half the
    /// rows; 0: it is not measured.
    std::size_t quality_neighbours = 0;
    /// Whether it is told how far to trust the place of each row; of 30 rows or more.
    bool wants_reliability = false;
    /// How many seeds, from that of the options on, are fitted to keep the map of lowest cost.
    int seeds = 1;
    /// Sees the states of some iterations and of the last one; true ends the fit. May be empty.
    std::function<bool(const FitState&)> callback = {};
    /// The callback is called with every iteration that this number divides.
    int callback_every = 1;
    /// Whether the map of a fit that was interrupted is wanted.
    bool keeps_interrupted = false;
};

struct Outcome {
    Fit fit;
    /// The points as they were centred and scaled, rows x columns.
    std::unique_ptr<double[]> input;
    /// Of the result, if it was asked for.
    std::optional<NeighbourhoodQuality> quality;
    std::optional<RowReliability> reliability;
    /// Whether the fit was interrupted, and its map wanted all the same.
    bool is_interrupted = false;
    /// That of the map.
    int seed = 0;
    /// Of the last step; the automatic rate changes with the exaggeration.
    double learning_rate = 0.0;
    /// Whether no affinity is exaggerated any more.
    bool is_past_exaggeration = true;
    /// What the chart page tells of the run.
    std::vector<std::pair<std::string, std::string>> caption;
    /// What the user should know of the threads; mostly empty.
    std::string threads_note;
    /// What the user should know of the neighbours that were given; mostly empty.
    std::string neighbours_note;
};

/// Embeds the points; the coordinates are those that the command would give.
///
/// One fit at a time: the random start is from the `rand` stream of the process.
///
/// @param points          at least 3 rows, finite; copied once
/// @param is_interrupted  looked at after each iteration; if set, the fit ends there, or is given
/// up
/// @throws InputError     if all rows are equal, or their values too large or too close
/// @throws std::bad_alloc if the fit cannot have its memory
/// @throws std::runtime_error if the embedding gets out of range, or is given up
Outcome run_fit(MatrixView<const double> points,
                const FitOptions& options,
                const FitManner& manner,
                const std::atomic<bool>& is_interrupted);

}  // namespace ovik::python
