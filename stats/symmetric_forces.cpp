#include "stats/symmetric_forces.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "stats/panels.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// The term of the cost for an entry of the diagonal, where the similarity is DBL_MIN.
double diagonal_cost(double p, double sum_Q) {
    // Too small for any digit of the cost, and slow to compute with.
    if (p < 1e-200) {
        return 0.0;
    }
    return p * std::log((p + DBL_MIN) / (DBL_MIN / sum_Q + DBL_MIN));
}

}  // namespace

SymmetricForces::SymmetricForces(std::size_t point_count,
                                 std::size_t dims,
                                 const PairKernels& kernels)
    : kernels_(kernels),
      point_count_(point_count),
      dims_(dims),
      worker_count_(panel_worker_count(point_count)),
      similarity_sum_(point_count, kernels),
      coordinates_(calloc_array<double>(padded_to_panels(point_count) * dims)),
      forces_(malloc_array<double>(padded_to_panels(point_count) * dims)),
      costs_(malloc_array<double>(padded_to_panels(point_count))) {
    require_allocated(coordinates_, forces_, costs_);
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

/// Lets the kernel fill the forces of all panels, and returns the sum of all similarities.
template <typename Kernel>
double SymmetricForces::addPanels(const double* P, const Kernel& kernel) {
    const EmbeddingColumns Y = columns();
    const double sum_Q = similarity_sum_(Y);
    const std::size_t force_size = dims_ * kPanelWidth;
    PanelQueue panels(point_count_);
    parallel_for_each(worker_count_, 1, [&](std::size_t /*worker*/) {
        panels.work([&](std::size_t panel) {
            double* const force = forces_.get() + panel * force_size;
            std::fill_n(force, force_size, 0.0);
            kernel(Y,
                   panel,
                   PanelTask{sum_Q,
                             P + panel * kPanelWidth * point_count_,
                             force,
                             costs_.get() + panel * kPanelWidth});
        });
    });
    return sum_Q;
}

void SymmetricForces::copyGradient(double* gradient) const {
    for (std::size_t n = 0; n < point_count_; ++n) {
        const double* const force =
            forces_.get() + n / kPanelWidth * kPanelWidth * dims_ + n % kPanelWidth;
        for (std::size_t d = 0; d < dims_; ++d) {
            gradient[n * dims_ + d] = force[d * kPanelWidth];
        }
    }
}

void SymmetricForces::gradient(const double* P, double* gradient) {
    addPanels(P, kernels_.add_forces);
    copyGradient(gradient);
}

double SymmetricForces::cost(const double* P, const double* diagonal, double* gradient) {
    const double sum_Q = addPanels(P, kernels_.add_forces_and_cost);
    if (gradient != nullptr) {
        copyGradient(gradient);
    }
    double cost = 0.0;
    for (std::size_t n = 0; n < point_count_; ++n) {
        cost += costs_[n] + diagonal_cost(diagonal[n], sum_Q);
    }
    return cost;
}

}  // namespace ovik
