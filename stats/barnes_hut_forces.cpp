#include "stats/barnes_hut_forces.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>

#include "neighbours/kernels/tree_walk.h"
#include "stats/barnes_hut_gradient.h"
#include "stats/elementwise.h"
#include "stats/kernels/edge_pass.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Points or rows of one task: enough to be worth dealing out, few enough to share evenly.
constexpr std::size_t kTaskRows = 4 * kWalkBatch;

/// Fewest points for which another thread pays.
constexpr std::size_t kForceGrain = 16;

/// The part of one row in the cost, whatever its numbers.
double exact_row_cost(const EdgeView& edges, std::size_t n, double sum_Q) {
    double cost = 0.0;
    for (std::size_t i = edges.row_P[n]; i < edges.row_P[n + 1]; ++i) {
        const double* const own = edges.Y + n * edges.dims;
        const double* const other = edges.Y + edges.col_P[i] * edges.dims;
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < edges.dims; ++d) {
            const double difference = own[d] - other[d];
            squared_distance += difference * difference;
        }
        const double Q = 1.0 / (squared_distance + 1.0) / sum_Q + DBL_MIN;
        cost += edges.val_P[i] * std::log((edges.val_P[i] + DBL_MIN) / Q);
    }
    return cost;
}

}  // namespace

BarnesHutForces::BarnesHutForces(std::size_t N, std::size_t dims)
    : N_(N),
      dims_(dims),
      tree_(static_cast<unsigned int>(dims), static_cast<unsigned int>(N)),
      neg_f_(malloc_array<double>(N * dims)),
      shares_(malloc_array<double>(N)),
      row_costs_(malloc_array<RowCost>(N)) {
    exit_unless_allocated(neg_f_, shares_, row_costs_);
}

void BarnesHutForces::gradient(const SparseMatrixView& P,
                               const double* Y,
                               double theta,
                               double* gradient) {
    visit(edgesOf(P, Y), theta, gradient, nullptr);
    finishGradient(gradient, normalisation());
}

double BarnesHutForces::cost(const SparseMatrixView& P, const double* Y, double theta) {
    const EdgeView edges = edgesOf(P, Y);
    visit(edges, theta, nullptr, row_costs_.get());
    return sumCosts(edges, normalisation());
}

double BarnesHutForces::costAndGradient(const SparseMatrixView& P,
                                        const double* Y,
                                        double theta,
                                        double* gradient) {
    const EdgeView edges = edgesOf(P, Y);
    visit(edges, theta, gradient, row_costs_.get());
    const double sum_Q = normalisation();
    finishGradient(gradient, sum_Q);
    return sumCosts(edges, sum_Q);
}

EdgeView BarnesHutForces::edgesOf(const SparseMatrixView& P, const double* Y) const {
    return {P.row_P, P.col_P, P.val_P, Y, dims_};
}

/// Lets every point walk the tree and every row pass its entries: the repulsive forces and their
/// shares are there afterwards, and the attractive forces and sums of the cost if wanted.
void BarnesHutForces::visit(const EdgeView& edges, double theta, double* pos_f, RowCost* costs) {
    const EdgePass pass = edge_pass(instruction_set(), dims_);
    const std::size_t tasks = (N_ + kTaskRows - 1) / kTaskRows;
    const auto rows_of = [this](std::size_t task) {
        return IndexRange{task * kTaskRows, std::min((task + 1) * kTaskRows, N_)};
    };
    const int workers = worker_count(N_, kForceGrain);
    const std::size_t parts = tree_.prepareRebuild(edges.Y);
    // The entries do not need the tree: both at once leave one pause fewer at which threads wait.
    parallel_tasks(parts + tasks, workers, [&](std::size_t i, std::size_t /*worker*/) {
        if (i < parts) {
            tree_.rebuildPart(i);
            return;
        }
        const IndexRange rows = rows_of(i - parts);
        if (pos_f != nullptr) {
            std::fill(pos_f + rows.begin * dims_, pos_f + rows.end * dims_, 0.0);
        }
        pass(edges, rows.begin, rows.end, pos_f, costs);
    });
    tree_.finishRebuild();
    parallel_tasks(tasks, workers, [&](std::size_t i, std::size_t /*worker*/) {
        const IndexRange points = rows_of(i);
        tree_.computeRepulsion(points.begin, points.end, theta, neg_f_.get(), shares_.get());
    });
}

/// The shares of all points, added in point order.
double BarnesHutForces::normalisation() const {
    return std::accumulate(shares_.get(), shares_.get() + N_, 0.0);
}

/// Takes the repulsive forces from the attractive ones.
void BarnesHutForces::finishGradient(double* gradient, double sum_Q) const {
    const double* const neg_f = neg_f_.get();
    parallel_for_each(N_ * dims_, kElementwiseGrain, [=](std::size_t i) {
        gradient[i] = gradient[i] - neg_f[i] / sum_Q;
    });
}

double BarnesHutForces::sumCosts(const EdgeView& edges, double sum_Q) const {
    const double log_sum_Q = std::log(sum_Q);
    double cost = 0.0;
    for (std::size_t n = 0; n < N_; ++n) {
        const RowCost& row = row_costs_[n];
        cost += std::isnan(row.log_sum) ? exact_row_cost(edges, n, sum_Q)
                                        : row.log_sum + log_sum_Q * row.weight_sum;
    }
    return cost;
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
