#include "stats/barnes_hut_objective.h"

#include "stats/elementwise.h"
#include "stats/sparse_affinities.h"
#include "util/format.h"

namespace ovik {

int neighbour_count(double perplexity, std::size_t N) {
    const double wanted = 3.0 * perplexity;
    const double available = static_cast<double>(N) - 1.0;
    // Compared before it is truncated: a huge or NaN perplexity has no int.
    if (wanted <= 0.0 || available <= 0.0) {
        return 0;
    }
    return static_cast<int>(wanted < available ? wanted : available);
}

BarnesHutObjective::BarnesHutObjective(const double* X,
                                       std::size_t N,
                                       std::size_t D,
                                       std::size_t out_dims,
                                       double perplexity,
                                       double theta,
                                       CachedNeighbours* kept)
    : N_(N),
      theta_(theta) {
    const SparseMatrix conditional =
        neighbour_affinities(X, N, D, perplexity, neighbour_count(perplexity, N), kept);
    P_ = symmetrized(conditional.view(), N);
    divide_by_sum(P_.val_P.get(), entryCount());
    forces_.emplace(N, out_dims);
}

void BarnesHutObjective::exaggerate(double factor) {
    multiply_all(P_.val_P.get(), entryCount(), factor);
}

void BarnesHutObjective::relax(double factor) {
    divide_all(P_.val_P.get(), entryCount(), factor);
}

void BarnesHutObjective::gradient(const double* Y, double* dY) {
    forces_->gradient(P_.view(), Y, theta_, dY);
}

double BarnesHutObjective::cost(const double* Y) {
    return forces_->cost(P_.view(), Y, theta_);
}

double BarnesHutObjective::costAndGradient(const double* Y, double* dY) {
    return forces_->costAndGradient(P_.view(), Y, theta_, dY);
}

std::string BarnesHutObjective::report(std::clock_t elapsed) const {
    const auto rows = static_cast<double>(N_);
    const double density = static_cast<double>(entryCount()) / (rows * rows);
    const float seconds = static_cast<float>(elapsed) / 1000000.0F;
    return "Got sparsity " + num2string(density, 6) + " for input similarities in " +
           num2string(seconds) + " seconds!";
}

}  // namespace ovik
