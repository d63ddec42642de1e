#include "stats/sparse_objective.h"

#include <utility>

#include "util/format.h"

namespace ovik {

SparseObjective::SparseObjective(SlicedAttraction attraction, SparseForces forces)
    : attraction_(std::move(attraction)),
      forces_(std::move(forces)) {}

void SparseObjective::exaggerate(double factor) {
    attraction_.matrix().multiply(factor);
}

void SparseObjective::endExaggeration(double factor) {
    attraction_.matrix().divide(factor);
}

void SparseObjective::anneal(double factor) {
    forces_.anneal(factor);
}

void SparseObjective::gradient(const double* Y, double* dY) {
    forces_.gradient(attraction_, Y, dY);
}

double SparseObjective::cost(const double* Y) {
    return forces_.cost(attraction_, Y);
}

void SparseObjective::rowCosts(const double* Y, double* costs) {
    forces_.rowCosts(attraction_, Y, costs);
}

void SparseObjective::rowMisfits(const double* Y, const double* similarity_sums, double* misfits) {
    attraction_.rowMisfits(Y, similarity_sums, misfits);
}

double SparseObjective::costAndGradient(const double* Y, double* dY) {
    return forces_.costAndGradient(attraction_, Y, dY);
}

std::string SparseObjective::report(std::clock_t elapsed) const {
    const auto rows = static_cast<double>(attraction_.matrix().rankRows().count());
    const double density = static_cast<double>(attraction_.matrix().entryCount()) / (rows * rows);
    const float seconds = static_cast<float>(elapsed) / 1000000.0F;
    return "Got sparsity " + num2string(density, 6) + " for input similarities in " +
           num2string(seconds) + " seconds!";
}

}  // namespace ovik
