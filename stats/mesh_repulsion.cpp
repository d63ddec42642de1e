#include "stats/mesh_repulsion.h"

#include <algorithm>

#include "stats/mesh_box.h"
#include "stats/mesh_grid.h"
#include "stats/own_potential.h"
#include "util/instruction_set.h"

namespace ovik {

/// Has no parts: each step of the work has loops of its own.
std::size_t MeshRepulsion::prepare(const double* Y) {
    Y_ = Y;
    return 0;
}

void MeshRepulsion::finishPreparation() {
    const std::size_t N = rows_.count();
    const MapBox box = mesh_box(Y_, N);
    const MeshGrid grid = mesh_grid(box, N);
    kernels_ = mesh_points(instruction_set());
    if (grid.cells_per_unit != cells_per_unit_) {
        field_.own = own_potential(grid.cells_per_unit);
        cells_per_unit_ = grid.cells_per_unit;
    }
    potential_.lay(grid.rows, grid.columns, grid.cells_per_unit, charge_scale(N));
    order_.sort(Y_, rows_.own(), box, grid);
    charges_.spread(order_, N, grid.rows, potential_.stride(), potential_.field(), rows_.ranks());
    potential_.solve();
    field_.cells = potential_.field();
    field_.stride = potential_.stride();
    // By cells, and minus half of it.
    field_.force_factor = -0.5 * grid.cells_per_unit;
    far_.clear();
    if (hasFarPoints(box)) {
        far_.compute(Y_, rows_, box);
    }
}

/// Whether points of any rank lie outside the box.
bool MeshRepulsion::hasFarPoints(const MapBox& box) const {
    if (!rows_.ranks().areSeveral()) {
        return order_.size() < rows_.count();
    }
    const MapBox whole = map_box(Y_, rows_.count());
    return !holds(box, whole.least) || !holds(box, whole.greatest);
}

/// Those on the mesh first, then those far out.
void MeshRepulsion::compute(IndexRange points, double* forces, double* z_terms) const {
    const std::size_t near = order_.size();
    const IndexRange on_mesh = {std::min(points.begin, near), std::min(points.end, near)};
    kernels_.gather(order_.points() + on_mesh.begin, on_mesh.size(), field_, forces, z_terms);
    if (far_.size() == 0) {
        return;
    }
    for (std::size_t i = on_mesh.begin; i < on_mesh.end; ++i) {
        far_.addTo(order_.points()[i].index, forces, z_terms);
    }
    for (std::size_t i = std::max(points.begin, near); i < points.end; ++i) {
        far_.write(i - near, forces, z_terms);
    }
}

}  // namespace ovik
