#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "stats/fit_options.h"
#include "util/api.h"
#include "util/matrix_view.h"

/// How far a map would be another one from another start, or of other columns.

namespace ovik {

/// What is varied from map to map.
enum class Variation {
    /// The seed, which goes on from that of the map; every start is random.
    Seeds,
    /// The columns, which are drawn anew with replacement.
    Columns,
};

/// Makes a map beside another one.
///
/// @param X        as it was loaded: neither centred nor prepared for a metric; copied
/// @param options  of the map
/// @param number   of the map beside it, from 0: what is varied follows from the seed of the
/// options and this
/// @param goes_on  asked after each iteration; may be empty
/// @return the places, rows x output dimensions; none if it was ended by that
/// @throws what `fit` throws; InputError if the metric cannot compare a row of the drawn columns
OVIK_API std::optional<std::vector<double>> varied_map(MatrixView<const double> X,
                                                       const FitOptions& options,
                                                       Variation variation,
                                                       std::size_t number,
                                                       const std::function<bool()>& goes_on = {});

/// The maps of numbers 0 to `count` - 1, side by side as `run_side_by_side` makes them. The same
/// for any number of threads.
///
/// @param goes_on  may be asked by several threads at once
/// @return empty if they were ended
OVIK_API std::vector<std::vector<double>> varied_maps(MatrixView<const double> X,
                                                      const FitOptions& options,
                                                      Variation variation,
                                                      std::size_t count,
                                                      std::size_t at_once = 0,
                                                      const std::function<bool()>& goes_on = {});

/// How much the place of each row varies.
struct RowStability {
    /// The root of the mean squared distance of its places on other maps from that on this one, in
    /// units of the root of the mean squared distance of all rows from the middle of this one. The
    /// others are laid onto it first: moved, turned, mirrored where that helps, and scaled
    /// (`procrustes_move`).
    std::vector<double> spread;
    /// The share of its nearest rows on this map that are so on another, averaged over the others.
    std::vector<double> shared;
};

/// @param map         finite
/// @param others      of the same rows, at least one
/// @param neighbours  how many nearest rows are compared
OVIK_API RowStability row_stability(MatrixView<const double> map,
                                    std::span<const std::vector<double>> others,
                                    std::size_t neighbours = 10);

/// How far two clusters stay apart.
struct ClusterPair {
    /// The clusters, the lower number first.
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    /// How far they are apart on the map: the share of rows that lie nearer to a row of their own
    /// cluster than to any of the other, averaged over the two; about 0.5 if they are mixed.
    double separation = 0.0;
    /// The share of other maps on which that is `kApart` or more.
    double apart = 0.0;
};

/// Two clusters are apart where their separation is this or more.
constexpr double kApart = 0.9;

/// All pairs of clusters of two rows or more.
///
/// @param clusters  of each row, from 0
OVIK_API std::vector<ClusterPair> cluster_pairs(MatrixView<const double> map,
                                                std::span<const std::vector<double>> others,
                                                std::span<const std::uint32_t> clusters);

}  // namespace ovik
