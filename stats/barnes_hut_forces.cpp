#include "stats/barnes_hut_forces.h"

#include <utility>

#include "stats/sparse_forces.h"
#include "stats/tree_repulsion.h"

namespace ovik {

BarnesHutForces::BarnesHutForces(std::size_t N, std::size_t dims) {
    auto repulsion = std::make_unique<TreeRepulsion>(N, dims, 0.0);
    repulsion_ = repulsion.get();
    forces_ = std::make_unique<SparseForces>(N, dims, std::move(repulsion));
}

BarnesHutForces::~BarnesHutForces() = default;

void BarnesHutForces::gradient(const SparseMatrixView& P,
                               const double* Y,
                               double theta,
                               double* gradient) {
    repulsion_->setTheta(theta);
    forces_->gradient(P, Y, gradient);
}

double BarnesHutForces::cost(const SparseMatrixView& P, const double* Y, double theta) {
    repulsion_->setTheta(theta);
    return forces_->cost(P, Y);
}

double BarnesHutForces::costAndGradient(const SparseMatrixView& P,
                                        const double* Y,
                                        double theta,
                                        double* gradient) {
    repulsion_->setTheta(theta);
    return forces_->costAndGradient(P, Y, gradient);
}

void barnes_hut_gradient(const SparseMatrixView& P,
                         const double* Y,
                         std::size_t N,
                         std::size_t dims,
                         double* gradient,
                         double theta) {
    BarnesHutForces(N, dims).gradient(P, Y, theta, gradient);
}

double barnes_hut_cost(
    const SparseMatrixView& P, const double* Y, std::size_t N, std::size_t dims, double theta) {
    return BarnesHutForces(N, dims).cost(P, Y, theta);
}

}  // namespace ovik
