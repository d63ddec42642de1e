#include "stats/symmetric_forces.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numbers>
#include <numeric>

#include "stats/panels.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// The term of the cost for an entry of the diagonal, where the similarity is DBL_MIN.
double diagonal_cost(double p, double sum_Q, RealFunction log) {
    // Too small for any digit of the cost, and slow to compute with.
    if (p < 1e-200) {
        return 0.0;
    }
    return p * log((p + DBL_MIN) / (DBL_MIN / sum_Q + DBL_MIN));
}

}  // namespace

SymmetricForces::SymmetricForces(std::size_t point_count,
                                 std::size_t dims,
                                 RealFunction log,
                                 const PairKernels& kernels)
    : log_(log),
      kernels_(kernels),
      point_count_(point_count),
      dims_(dims),
      worker_count_(panel_worker_count(point_count)),
      similarity_sum_(point_count, kernels),
      blocks_(point_count, worker_count_),
      cost_terms_(point_count, kernels),
      coordinates_(calloc_array<double>(padded_to_panels(point_count) * dims)),
      forces_(malloc_array<double>(padded_to_panels(point_count) * dims)),
      costs_(malloc_array<double>(padded_to_panels(point_count))) {
    require_allocated(coordinates_, forces_, costs_);
}

void SymmetricForces::takeAffinities(const double* P, const double* diagonal) {
    P_ = P;
    diagonal_ = diagonal;
    cost_terms_.take(P);
}

bool SymmetricForces::take(const double* Y) {
    const std::size_t stride = padded_to_panels(point_count_);
    bool ordinary = true;
    for (std::size_t n = 0; n < point_count_; ++n) {
        for (std::size_t d = 0; d < dims_; ++d) {
            const double y = Y[n * dims_ + d];
            coordinates_[d * stride + n] = y;
            // The comparison is false for NaN, too.
            ordinary = ordinary && std::fabs(y) <= kLargestCoordinate;
        }
    }
    return ordinary;
}

EmbeddingColumns SymmetricForces::columns() const {
    return {coordinates_.get(), point_count_, dims_};
}

/// Calls `body(block)` for all pairs, in an order in which forces and costs may be added.
template <typename Body>
void SymmetricForces::forBlocks(const Body& body) {
    const std::size_t padded_count = padded_to_panels(point_count_);
    std::fill_n(forces_.get(), padded_count * dims_, 0.0);
    std::fill_n(costs_.get(), padded_count, 0.0);
    blocks_.restart();
    parallel_for_each(worker_count_, 1, [&](std::size_t /*worker*/) { blocks_.work(body); });
}

void SymmetricForces::copyGradient(double* gradient) const {
    for (std::size_t n = 0; n < point_count_; ++n) {
        const double* const force =
            forces_.get() + n / kPanelWidth * kPanelWidth * dims_ + n % kPanelWidth;
        for (std::size_t d = 0; d < dims_; ++d) {
            gradient[n * dims_ + d] = annealing_ * force[d * kPanelWidth];
        }
    }
}

void SymmetricForces::gradient(double* gradient) {
    const EmbeddingColumns Y = columns();
    const ForceTask task = {annealing_ * similarity_sum_(Y), P_, forces_.get()};
    forBlocks([&](const PairBlock& block) { kernels_.add_forces(Y, block, task); });
    copyGradient(gradient);
}

double SymmetricForces::cost(double* gradient) {
    const EmbeddingColumns Y = columns();
    const double sum_Q = similarity_sum_(Y);
    const ForceTask forces = {annealing_ * sum_Q, P_, forces_.get()};
    const CostTask costs = {P_, cost_terms_.significant(), costs_.get()};
    forBlocks([&](const PairBlock& block) {
        if (gradient != nullptr) {
            kernels_.add_forces(Y, block, forces);
        }
        kernels_.add_costs(Y, block, costs);
    });
    if (gradient != nullptr) {
        copyGradient(gradient);
    }
    return totalCost(sum_Q);
}

/// The cost from the sums of the rows, which have each pair once and binary logarithms.
double SymmetricForces::totalCost(double sum_Q) const {
    const double pairs = std::accumulate(costs_.get(), costs_.get() + point_count_, 0.0);
    double diagonal = 0.0;
    for (std::size_t n = 0; n < point_count_; ++n) {
        diagonal += diagonal_cost(diagonal_[n], sum_Q, log_);
    }
    return cost_terms_.entropy() + 2.0 * std::numbers::ln2 * pairs +
           cost_terms_.sum() * log_(sum_Q) + diagonal;
}

}  // namespace ovik
