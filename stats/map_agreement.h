#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "util/api.h"
#include "util/matrix_view.h"

namespace ovik {

/// How far maps of the same rows agree.
struct MapAgreement {
    /// The Procrustes disparity of two maps, 0 to 1: 0 if moving, turning, mirroring and scaling
    /// make one of the other.
    ///
    /// Both are moved to their centres and scaled to a sum of squared coordinates of 1; one is then
    /// turned, mirrored if that helps, and scaled once more to lie as near to the other as it can.
    /// The disparity is the sum of squared distances that is left: 1 - (s1 + s2 + ...)^2, where s
    /// are the singular values of the product of the transpose of one and the other. It is 1 where
    /// a map has all its points at one place.
    ///
    /// @par Source Gower, "Generalized Procrustes analysis", Psychometrika 40:33, 1975; Schönemann,
    /// "A generalized solution of the orthogonal Procrustes problem", Psychometrika 31:1, 1966
    double disparity = 0.0;
    /// How many nearest neighbours of each row are compared.
    std::size_t neighbours = 0;
    /// The share of them that a row has in both maps, averaged over the rows.
    double shared_neighbours = 0.0;
};

/// The agreement of two maps. The same for any number of threads. Among rows equally far in a map,
/// those are its neighbours that a search of it comes upon first.
///
/// @param A, B        of one shape, finite, at least 2 rows
/// @param neighbours  at least 1; or as many as a row has others, if that is less
/// @throws InputError if the maps differ in shape, or `neighbours` is 0
OVIK_API MapAgreement map_agreement(MatrixView<const double> A,
                                    MatrixView<const double> B,
                                    std::size_t neighbours = 10);

/// The nearest neighbours of the rows of a map, found once to be compared with those on others.
class MapNeighbours {
  public:
    /// @param map, neighbours  as of `map_agreement`; the map is not copied
    /// @throws InputError as `map_agreement`
    explicit MapNeighbours(MatrixView<const double> map, std::size_t neighbours = 10);

    /// The share of nearest neighbours that each row has in both maps: what `map_agreement`
    /// averages.
    ///
    /// @throws InputError as `map_agreement`
    [[nodiscard]] std::vector<double> sharedWith(MatrixView<const double> other) const;

  private:
    MatrixView<const double> map_;
    std::size_t count_ = 0;
    std::vector<std::uint32_t> nearest_;
};

/// The same averaged over all pairs of several maps.
///
/// @param maps  at least two
OVIK_API MapAgreement mean_agreement(std::span<const MatrixView<const double>> maps,
                                     std::size_t neighbours = 10);

}  // namespace ovik
