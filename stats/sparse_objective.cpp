#include "stats/sparse_objective.h"

#include <utility>

#include "stats/elementwise.h"
#include "util/format.h"

namespace ovik {

SparseObjective::SparseObjective(SparseMatrix P, std::size_t N, SparseForces forces)
    : N_(N),
      P_(std::move(P)),
      forces_(std::move(forces)) {}

void SparseObjective::exaggerate(double factor) {
    multiply_all(P_.val_P.get(), entryCount(), factor);
}

void SparseObjective::endExaggeration(double factor) {
    divide_all(P_.val_P.get(), entryCount(), factor);
}

void SparseObjective::gradient(const double* Y, double* dY) {
    forces_.gradient(P_.view(), Y, dY);
}

double SparseObjective::cost(const double* Y) {
    return forces_.cost(P_.view(), Y);
}

double SparseObjective::costAndGradient(const double* Y, double* dY) {
    return forces_.costAndGradient(P_.view(), Y, dY);
}

std::string SparseObjective::report(std::clock_t elapsed) const {
    const auto rows = static_cast<double>(N_);
    const double density = static_cast<double>(entryCount()) / (rows * rows);
    const float seconds = static_cast<float>(elapsed) / 1000000.0F;
    return "Got sparsity " + num2string(density, 6) + " for input similarities in " +
           num2string(seconds) + " seconds!";
}

}  // namespace ovik
