#include "stats/mesh_repulsion.h"

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
    const MeshGrid grid = mesh_grid(map_box(Y_, N_), N_);
    kernels_ = mesh_points(instruction_set());
    if (grid.cells_per_unit != cells_per_unit_) {
        field_.own = own_potential(grid.cells_per_unit);
        cells_per_unit_ = grid.cells_per_unit;
    }
    potential_.lay(grid.rows, grid.columns, grid.cells_per_unit, charge_scale(N_));
    order_.sort(Y_, N_, grid);
    charges_.spread(order_, N_, grid.rows, potential_.stride(), potential_.field());
    potential_.solve();
    field_.cells = potential_.field();
    field_.stride = potential_.stride();
    // By cells, and minus half of it.
    field_.force_factor = -0.5 * grid.cells_per_unit;
}

void MeshRepulsion::compute(IndexRange points, double* forces, double* z_terms) const {
    kernels_.gather(order_.points() + points.begin, points.size(), field_, forces, z_terms);
}

}  // namespace ovik
