#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "results/recorded_stability.h"
#include "util/api.h"
#include "util/matrix_view.h"

/// How far a map stays as it is beside others of the same rows.
///
/// Nothing here makes a map: others are given by their places, row-major, rows x dimensions as the
/// map has them, whether they were just made (`stats/varied_maps.h`) or read from files. They may
/// lie anywhere, in any size, turned and mirrored. Their order plays a part in rounding alone.

namespace ovik {

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

/// Clusters that are apart on a map stay so where they are on so many of the others.
constexpr double kStayApart = 0.8;

/// All that is told of how far a map stays as it is.
///
/// @param of_seeds    maps from other seeds, may be none
/// @param of_columns  maps of other columns, may be none
/// @param clusters    of each row, from 0; empty for none
OVIK_API RecordedStability map_stability(MatrixView<const double> map,
                                         std::span<const std::vector<double>> of_seeds,
                                         std::span<const std::vector<double>> of_columns,
                                         std::span<const std::uint32_t> clusters = {},
                                         std::size_t neighbours = 10);

}  // namespace ovik
