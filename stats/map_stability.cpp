#include "stats/map_stability.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "stats/map_agreement.h"
#include "stats/procrustes.h"
#include "util/parallel.h"

namespace ovik {

namespace {

double squared_distance(std::span<const double> a, std::span<const double> b) {
    double squares = 0.0;
    for (std::size_t d = 0; d < a.size(); ++d) {
        squares += (a[d] - b[d]) * (a[d] - b[d]);
    }
    return squares;
}

/// For each row and each cluster the squared distance to the nearest other row of it.
std::vector<double> distances_to_clusters(MatrixView<const double> map,
                                          std::span<const std::uint32_t> clusters,
                                          std::size_t count) {
    std::vector<double> nearest(map.rows * count, std::numeric_limits<double>::infinity());
    parallel_for_each(map.rows, 16, [&](std::size_t n) {
        double* const own = nearest.data() + n * count;
        for (std::size_t m = 0; m < map.rows; ++m) {
            if (m != n) {
                double& least = own[clusters[m]];
                least = std::min(least, squared_distance(map.row(n), map.row(m)));
            }
        }
    });
    return nearest;
}

/// The separation of each pair of clusters, as a matrix of which the part above the diagonal is
/// there.
std::vector<double> separations(MatrixView<const double> map,
                                std::span<const std::uint32_t> clusters,
                                std::span<const std::size_t> sizes) {
    const std::size_t count = sizes.size();
    const std::vector<double> nearest = distances_to_clusters(map, clusters, count);
    // Of each cluster the rows that lie nearer to it than to another one.
    std::vector<double> nearer(count * count, 0.0);
    for (std::size_t n = 0; n < map.rows; ++n) {
        const double* const distances = nearest.data() + n * count;
        const std::uint32_t own = clusters[n];
        for (std::size_t other = 0; other < count; ++other) {
            nearer[own * count + other] += distances[own] < distances[other] ? 1.0 : 0.0;
        }
    }
    std::vector<double> result(count * count, 0.0);
    for (std::size_t a = 0; a < count; ++a) {
        for (std::size_t b = a + 1; b < count; ++b) {
            result[a * count + b] = (nearer[a * count + b] / static_cast<double>(sizes[a]) +
                                     nearer[b * count + a] / static_cast<double>(sizes[b])) /
                                    2.0;
        }
    }
    return result;
}

MatrixView<const double> view_of(const std::vector<double>& map, MatrixView<const double> shape) {
    return {map.data(), shape.rows, shape.columns};
}

/// Adds what one kind of maps tells of each row.
void add_rows(RecordedStability& stability,
              MatrixView<const double> map,
              std::span<const std::vector<double>> others,
              const std::string& name,
              const std::string& title) {
    if (others.empty()) {
        return;
    }
    RowStability rows = row_stability(map, others, stability.neighbours);
    const std::string k = std::to_string(stability.neighbours);
    stability.columns.push_back(
        {"shared_" + k + "_" + name, "Map neighbours that stay, " + title, std::move(rows.shared)});
    stability.columns.push_back(
        {"spread_" + name, "Spread of the place, " + title, std::move(rows.spread)});
}

/// On how many of some maps pairs of clusters are apart; NaN without any.
double apart_of(std::size_t pair, const std::vector<ClusterPair>& pairs, std::size_t maps) {
    return maps > 0 ? pairs[pair].apart : std::numeric_limits<double>::quiet_NaN();
}

/// NaN, of maps that there are not, says nothing against it.
bool stays_apart(const RecordedClusterPair& pair) {
    return pair.separation >= kApart && !(pair.apart_seeds < kStayApart) &&
           !(pair.apart_columns < kStayApart);
}

}  // namespace

RowStability row_stability(MatrixView<const double> map,
                           std::span<const std::vector<double>> others,
                           std::size_t neighbours) {
    RowStability stability{std::vector<double>(map.rows, 0.0), std::vector<double>(map.rows, 0.0)};
    const MapNeighbours own(map, neighbours);
    for (const std::vector<double>& other : others) {
        std::vector<double> moved = other;
        const ProcrustesMove move = procrustes_move(map, view_of(other, map));
        move.apply({moved.data(), map.rows, map.columns});
        const std::vector<double> shared = own.sharedWith(view_of(other, map));
        for (std::size_t n = 0; n < map.rows; ++n) {
            stability.spread[n] += squared_distance(map.row(n), view_of(moved, map).row(n));
            stability.shared[n] += shared[n];
        }
    }
    const auto count = static_cast<double>(others.size());
    const double radius = standardised(map).norm / std::sqrt(static_cast<double>(map.rows));
    for (std::size_t n = 0; n < map.rows; ++n) {
        stability.spread[n] = radius > 0.0 ? std::sqrt(stability.spread[n] / count) / radius : 0.0;
        stability.shared[n] /= count;
    }
    return stability;
}

std::vector<ClusterPair> cluster_pairs(MatrixView<const double> map,
                                       std::span<const std::vector<double>> others,
                                       std::span<const std::uint32_t> clusters) {
    std::vector<std::size_t> sizes;
    for (const std::uint32_t cluster : clusters) {
        sizes.resize(std::max<std::size_t>(sizes.size(), cluster + 1));
        ++sizes[cluster];
    }
    const std::size_t count = sizes.size();
    const std::vector<double> here = separations(map, clusters, sizes);
    std::vector<double> apart(count * count, 0.0);
    for (const std::vector<double>& other : others) {
        const std::vector<double> there = separations(view_of(other, map), clusters, sizes);
        for (std::size_t i = 0; i < apart.size(); ++i) {
            apart[i] += there[i] >= kApart ? 1.0 : 0.0;
        }
    }
    std::vector<ClusterPair> pairs;
    for (std::uint32_t a = 0; a < count; ++a) {
        for (std::uint32_t b = a + 1; b < count; ++b) {
            if (sizes[a] > 1 && sizes[b] > 1) {
                pairs.push_back({a,
                                 b,
                                 here[a * count + b],
                                 apart[a * count + b] / static_cast<double>(others.size())});
            }
        }
    }
    return pairs;
}

RecordedStability map_stability(MatrixView<const double> map,
                                std::span<const std::vector<double>> of_seeds,
                                std::span<const std::vector<double>> of_columns,
                                std::span<const std::uint32_t> clusters,
                                std::size_t neighbours) {
    RecordedStability stability;
    stability.seeds = of_seeds.size();
    stability.draws = of_columns.size();
    stability.neighbours = neighbours;
    add_rows(stability, map, of_seeds, "seeds", "other seeds");
    add_rows(stability, map, of_columns, "columns", "other columns");
    stability.has_clusters = !clusters.empty();
    if (!stability.has_clusters) {
        return stability;
    }
    const std::vector<ClusterPair> by_seeds = cluster_pairs(map, of_seeds, clusters);
    const std::vector<ClusterPair> by_columns = cluster_pairs(map, of_columns, clusters);
    for (std::size_t i = 0; i < by_seeds.size(); ++i) {
        RecordedClusterPair pair{by_seeds[i].first,
                                 by_seeds[i].second,
                                 by_seeds[i].separation,
                                 apart_of(i, by_seeds, of_seeds.size()),
                                 apart_of(i, by_columns, of_columns.size())};
        pair.stay_apart = stays_apart(pair);
        stability.pairs.push_back(pair);
    }
    return stability;
}

}  // namespace ovik
