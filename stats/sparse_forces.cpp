#include "stats/sparse_forces.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "stats/elementwise.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Points or rows of one task: enough to be worth taking, few enough to share evenly, and a
/// multiple of the points that walk a tree together and of the rows of a slice.
constexpr std::size_t kTaskRows = 64;

/// Fewest points for which another thread pays.
constexpr std::size_t kForceGrain = 16;

}  // namespace

SparseForces::SparseForces(std::size_t N, std::size_t dims, std::unique_ptr<Repulsion> repulsion)
    : N_(N),
      dims_(dims),
      repulsion_(std::move(repulsion)),
      repulsive_forces_(malloc_array<double>(N * dims)),
      z_terms_(malloc_array<double>(N)) {
    require_allocated(repulsive_forces_, z_terms_);
}

void SparseForces::gradient(Attraction& attraction, const double* Y, double* gradient) {
    subtractRepulsion(gradient, computeForces(attraction, Y, gradient, false));
}

double SparseForces::cost(Attraction& attraction, const double* Y) {
    const double Z = computeForces(attraction, Y, nullptr, true);
    return attraction.cost(Y, Z);
}

double SparseForces::costAndGradient(Attraction& attraction, const double* Y, double* gradient) {
    const double Z = computeForces(attraction, Y, gradient, true);
    subtractRepulsion(gradient, Z);
    return attraction.cost(Y, Z);
}

/// Computes the repulsive forces, the sums of the cost if wanted, and the attractive forces unless
/// they have no place to go to.
///
/// @return the normalisation Z
double SparseForces::computeForces(Attraction& attraction,
                                   const double* Y,
                                   double* attractive_forces,
                                   bool with_cost) {
    const std::size_t tasks = (N_ + kTaskRows - 1) / kTaskRows;
    const auto rows_of = [this](std::size_t task) {
        return IndexRange{task * kTaskRows, std::min((task + 1) * kTaskRows, N_)};
    };
    const int workers = worker_count(N_, kForceGrain);
    const std::size_t parts = repulsion_->prepare(Y);
    // Attraction does not need what repulsion prepares: both at once leave one pause fewer at which
    // threads wait.
    parallel_tasks(parts + tasks, workers, [&](std::size_t i, std::size_t /*worker*/) {
        if (i < parts) {
            repulsion_->preparePart(i);
        } else {
            attraction.pass(Y, rows_of(i - parts), attractive_forces, with_cost);
        }
    });
    repulsion_->finishPreparation();
    parallel_tasks(tasks, workers, [&](std::size_t i, std::size_t /*worker*/) {
        repulsion_->compute(rows_of(i), repulsive_forces_.get(), z_terms_.get());
    });
    return std::accumulate(z_terms_.get(), z_terms_.get() + N_, 0.0);
}

void SparseForces::subtractRepulsion(double* gradient, double Z) const {
    const double* const repulsion = repulsive_forces_.get();
    const double factor = annealing_;
    const double annealed_Z = factor * Z;
    parallel_for_each(N_ * dims_, kElementwiseGrain, [=](std::size_t i) {
        gradient[i] = factor * (gradient[i] - repulsion[i] / annealed_Z);
    });
}

}  // namespace ovik
