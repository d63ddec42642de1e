#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "stats/fit_options.h"
#include "util/api.h"
#include "util/matrix_view.h"
#include "util/stage.h"

/// The maps that a matrix would also have given: from another start, or of other columns. What they
/// say of one of them is in `stats/map_stability.h`.

namespace ovik {

class CachedNeighbours;

/// What is varied from map to map.
enum class Variation {
    /// The seed, which goes on from that of the map. Every start is random, or that of a sample.
    Seeds,
    /// The columns, which are drawn anew with replacement: as many as there are. Where the metric
    /// could not compare a row by those drawn, they are drawn once more.
    Columns,
};

/// Fewest columns of which drawing some anew gives enough other matrices: of 5 there are 126.
constexpr std::size_t kFewestDrawnColumns = 5;

/// The matrix of a map of other columns.
///
/// @return row-major, of the shape of X
/// @throws InputError if the metric cannot compare rows by any columns drawn
std::vector<double> drawn_columns(MatrixView<const double> X,
                                  const FitOptions& options,
                                  std::size_t number);

/// The options of the map of that number.
FitOptions varied_options(FitOptions options, Variation variation, std::size_t number);

/// Makes a map beside another one.
///
/// @param X           as it was loaded: neither centred nor prepared for a metric; copied
/// @param options     of the map; its start is not `Given`, its metric not `Precomputed`
/// @param number      of the map beside it, from 0: what is varied follows from the seed of the
///                    options and this
/// @param goes_on     asked again and again, by several threads at once; may be empty
/// @param neighbours  null, or what maps of other seeds share, as `FitHooks` has it
/// @return the places, rows x output dimensions; none if it was ended by that
/// @throws what `fit` throws; InputError if the metric cannot compare rows by any columns drawn;
/// std::runtime_error if the places are not finite
OVIK_API std::optional<std::vector<double>> varied_map(MatrixView<const double> X,
                                                       const FitOptions& options,
                                                       Variation variation,
                                                       std::size_t number,
                                                       const std::function<bool()>& goes_on = {},
                                                       CachedNeighbours* neighbours = nullptr);

/// Refuses a matrix of which maps of other columns cannot be made.
///
/// @param X, options  as of `varied_map`
/// @throws InputError if the metric cannot compare rows by any columns drawn for maps 0 to
/// `count` - 1
OVIK_API void check_draws(MatrixView<const double> X, const FitOptions& options, std::size_t count);

/// Maps of several seeds and of several draws of the columns.
struct VariedMaps {
    std::vector<std::vector<double>> of_seeds;
    std::vector<std::vector<double>> of_columns;
};

/// How several maps are made.
struct VariationManner {
    /// Most maps side by side; 0 for as many as there are threads.
    std::size_t at_once = 0;
    /// Asked again and again, by several threads at once; may be empty.
    std::function<bool()> goes_on = {};
    /// Takes how far the iterations of all maps are; may be empty.
    OnStage on_stage = {};
};

/// The maps of numbers 0 to `count` - 1 of both kinds, side by side as `run_side_by_side` makes
/// them. The same for any number of threads, and of maps at once.
///
/// @return none if they were ended
/// @throws what `varied_map` and `on_stage` throw
OVIK_API std::optional<VariedMaps> varied_maps(MatrixView<const double> X,
                                               const FitOptions& options,
                                               std::size_t count,
                                               const VariationManner& manner = {});

}  // namespace ovik
