#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "stats/fit_choices.h"
#include "stats/input_scale.h"
#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// A map that is finished, and what it was made of. A view: all of it belongs to the caller.
struct FinishedMap {
    /// The rows as they were embedded: in the form of the metric, centred and scaled, rows x
    /// columns.
    MatrixView<const double> input;
    /// How they were centred and scaled.
    const InputScale& scale;
    /// Where they lie, rows x output dimensions.
    MatrixView<const double> embedding;
    /// That of the map, at least 1.
    double perplexity = 1.0;
    /// That of the map, but not `Precomputed`.
    MetricKind metric = MetricKind::Euclidean;
    /// Those of the map.
    NumericsKind numerics = NumericsKind::Platform;
};

/// Rows that have been given places on a finished map.
struct PlacedRows {
    /// Row-major, rows x output dimensions.
    std::vector<double> embedding;
    /// Of each row, the Kullback-Leibler divergence of its place from its affinities, in nats.
    std::vector<double> costs;
    /// For each row, the row of the map that is nearest to it in the input.
    std::vector<std::uint32_t> nearest;
    /// How far that is, in the units of the scaled input.
    std::vector<double> nearest_distances;
};

/// The numbers of the descent by which a row finds its place.
struct PlacementDescent {
    int iterations = 125;
    double learning_rate = 2.0;
    double momentum = 0.8;
    /// How many of the nearest rows a row may start beside or amidst.
    std::size_t start_neighbours = 25;
    /// How many of these starts, the cheapest, it descends from.
    std::size_t descents = 3;
    /// The longest step, in units of the map: similarities of places fall off over about 1, so that
    /// longer steps leap over places that the gradient does not tell of.
    double longest_step = 1.0;
};

/// Gives rows places on a map whose own points stay where they are. Each row is placed by itself:
/// its place does not depend on the others, on their order or on the number of threads.
///
/// A row has conditional affinities p to the 3 * perplexity rows of the map that are nearest to it,
/// equal distances by the lower row, calibrated as those of the map were. The cost of a place is
/// the divergence of p from q, where q_j = w_j / (sum of all w) and w_j = 1 / (1 + |y - y_j|^2)
/// over all points of the map. Starts are the median, coordinate by coordinate, of the places of
/// the 25 nearest, and each of these places, nearest first; from the three that cost least, equal
/// ones in this order, the cost is descended: gradient descent with momentum and gains as the map
/// itself has them, no step longer than 1, and never beyond the box that the points of the map
/// span. The place of the lowest cost that was met is the result, so that it costs no more than any
/// start.
///
/// @param map   at least one row
/// @param rows  of the columns of the map, in the units of its matrix before it was centred, or
///              brought into the form of its metric
/// @throws InputError if a row is so far away that its distances are not finite, or has a value
/// that is not; if the metric finds a row without direction
/// @throws std::invalid_argument if the shapes do not fit together
/// @complexity O(rows * map rows * (columns + iterations * output dimensions))
OVIK_API PlacedRows place_rows(const FinishedMap& map,
                               MatrixView<const double> rows,
                               const PlacementDescent& descent = {});

/// The cost of a place that is infinitely far from a map, in nats. A row whose place does not cost
/// less lies nowhere near the rows that are like it.
///
/// @param rows  of the map
OVIK_API double cost_of_no_place(std::size_t rows, double perplexity);

/// Whether no rows can be placed on a map because an option of it is not as preset: rows are
/// compared by their columns, and have affinities of one perplexity.
///
/// @param option_name  as `OptionWords` has it
/// @param value        of the option, as `value_text` has it
OVIK_API bool bars_placement(std::string_view option_name, std::string_view value);

/// The largest distance of a row from the one that is nearest to it: what lies farther away from
/// all rows is unlike any of them.
///
/// @param rows  finite; at least 2
OVIK_API double largest_nearest_distance(MatrixView<const double> rows);

}  // namespace ovik
