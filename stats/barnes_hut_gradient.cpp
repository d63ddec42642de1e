#include "stats/barnes_hut_gradient.h"

#include <memory>

#include "stats/row_attraction.h"
#include "stats/sparse_forces.h"
#include "stats/tree_repulsion.h"

namespace ovik {

namespace {

SparseForces forces_of(std::size_t N, std::size_t dims, double theta) {
    return {N, dims, std::make_unique<TreeRepulsion>(N, dims, theta)};
}

}  // namespace

void barnes_hut_gradient(const SparseMatrixView& P,
                         const double* Y,
                         std::size_t N,
                         std::size_t dims,
                         double* gradient,
                         double theta) {
    RowAttraction attraction(P, N, dims);
    forces_of(N, dims, theta).gradient(attraction, Y, gradient);
}

double barnes_hut_cost(
    const SparseMatrixView& P, const double* Y, std::size_t N, std::size_t dims, double theta) {
    RowAttraction attraction(P, N, dims);
    return forces_of(N, dims, theta).cost(attraction, Y);
}

}  // namespace ovik
