#pragma once

#include <cstddef>

#include "stats/far_points.h"
#include "stats/kernels/mesh_points.h"
#include "stats/mesh_charges.h"
#include "stats/mesh_order.h"
#include "stats/mesh_potential.h"
#include "stats/rank_rows.h"
#include "stats/repulsion.h"

namespace ovik {

/// Repulsive forces from a particle mesh under a map in two dimensions.
///
/// All come from one potential, the sum over all points of 1 / (1 + squared distance): the force on
/// a point is minus half its gradient there, and the point adds its value to the normalisation,
/// both less what is the point's own. Points are charges, which splines spread over the cells of
/// the mesh; the potential of those is a convolution; and the same splines read it and its gradient
/// at the points. A few points that have flown far out of the map do not widen the mesh, but are
/// taken pair by pair.
class MeshRepulsion : public Repulsion {
  public:
    /// @param N  points
    explicit MeshRepulsion(std::size_t N) : MeshRepulsion(RankRows(N)) {}

    /// The same for several ranks: each spreads the charges of the points that it has, of whose
    /// order the ranges of points are.
    explicit MeshRepulsion(const RankRows& rows) : rows_(rows) {}

    std::size_t prepare(const double* Y) override;

    void preparePart(std::size_t /*part*/) override {}

    /// @throws InputError if the map has grown too wide for a mesh; see `mesh_grid`
    /// @throws WorkMemoryError
    void finishPreparation() override;

    void compute(IndexRange points, double* forces, double* z_terms) const override;

  private:
    [[nodiscard]] bool hasFarPoints(const MapBox& box) const;

    RankRows rows_;
    const double* Y_ = nullptr;
    MeshOrder order_;
    MeshCharges charges_;
    MeshPotential potential_;
    FarPoints far_;
    MeshPoints kernels_{};
    MeshField field_{};
    /// Those for which the own potential is `field_`'s.
    double cells_per_unit_ = 0.0;
};

}  // namespace ovik
