#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// How far a map in the plane stays as it is on others, as plainly as it can be written. Maps are
/// row-major, of two columns.
namespace plain {

/// For each row the share of its K nearest others that it has on both maps; of rows equally far the
/// earlier.
std::vector<double> rows_shared(const std::vector<double>& A,
                                const std::vector<double>& B,
                                std::size_t K);

/// For each row the root of the mean squared distance of its places on other maps, laid onto a map
/// by the best turn or the best reflection and by their spreads, in units of the spread of the map.
std::vector<double> plane_spread(const std::vector<double>& map,
                                 const std::vector<std::vector<double>>& others);

/// The share of rows that lie nearer to another row of their own cluster than to any of the other,
/// averaged over two clusters.
double separation(const std::vector<double>& map,
                  const std::vector<std::uint32_t>& clusters,
                  std::uint32_t first,
                  std::uint32_t second);

}  // namespace plain
