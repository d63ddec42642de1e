#include "stats/barnes_hut_forces.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>

#include "neighbours/sptree.h"
#include "stats/elementwise.h"
#include "util/malloc_array.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Fewest points for which another thread pays.
constexpr std::size_t kRepulsionGrain = 16;

/// Rows whose cost terms are computed together.
constexpr std::size_t kCostBlock = 64;

/// Adds the repulsive force on every point to its row of `neg_f`.
///
/// @return the normalisation: the shares of all points, added in point order
double add_repulsive_forces(
    const SPTree& tree, std::size_t N, std::size_t dims, double theta, double* neg_f) {
    const auto shares = calloc_array<double>(N);
    exit_unless_allocated(shares);
    parallel_for_each(N, kRepulsionGrain, [&](std::size_t n) {
        tree.computeNonEdgeForces(
            static_cast<unsigned int>(n), theta, neg_f + n * dims, &shares[n]);
    });
    return std::accumulate(shares.get(), shares.get() + N, 0.0);
}

/// Writes the cost terms of the entries of some rows.
///
/// @return their number
std::size_t fill_cost_terms(const SparseMatrixView& P,
                            const double* Y,
                            std::size_t dims,
                            IndexRange rows,
                            double sum_Q,
                            double* terms) {
    double* term = terms;
    for (std::size_t n = rows.begin; n < rows.end; ++n) {
        for (std::size_t i = P.row_P[n]; i < P.row_P[n + 1]; ++i) {
            double squared_distance = 0.0;
            for (std::size_t d = 0; d < dims; ++d) {
                const double difference = Y[n * dims + d] - Y[P.col_P[i] * dims + d];
                squared_distance += difference * difference;
            }
            const double Q = 1.0 / (squared_distance + 1.0) / sum_Q + DBL_MIN;
            *term++ = P.val_P[i] * std::log((P.val_P[i] + DBL_MIN) / Q);
        }
    }
    return static_cast<std::size_t>(term - terms);
}

SPTree tree_of(const double* Y, std::size_t N, std::size_t dims) {
    return {static_cast<unsigned int>(dims), Y, static_cast<unsigned int>(N)};
}

}  // namespace

void barnes_hut_gradient(const SparseMatrixView& P,
                         const double* Y,
                         std::size_t N,
                         std::size_t dims,
                         double* gradient,
                         double theta) {
    const SPTree tree = tree_of(Y, N, dims);
    const auto pos_f = calloc_array<double>(N * dims);
    const auto neg_f = calloc_array<double>(N * dims);
    exit_unless_allocated(pos_f, neg_f);
    tree.computeEdgeForces(P.row_P, P.col_P, P.val_P, static_cast<int>(N), pos_f.get());
    const double sum_Q = add_repulsive_forces(tree, N, dims, theta, neg_f.get());
    parallel_for_each(N * dims, kElementwiseGrain, [&](std::size_t i) {
        gradient[i] = pos_f[i] - neg_f[i] / sum_Q;
    });
}

double barnes_hut_cost(
    const SparseMatrixView& P, const double* Y, std::size_t N, std::size_t dims, double theta) {
    if (N == 0) {
        return 0.0;
    }
    const SPTree tree = tree_of(Y, N, dims);
    const auto discarded_forces = calloc_array<double>(N * dims);
    exit_unless_allocated(discarded_forces);
    const double sum_Q = add_repulsive_forces(tree, N, dims, theta, discarded_forces.get());

    const std::size_t block_count = (N + kCostBlock - 1) / kCostBlock;
    const auto block_start = [&P, N](std::size_t block) {
        return std::size_t{P.row_P[std::min(block * kCostBlock, N)]};
    };
    std::size_t block_capacity = 0;
    for (std::size_t block = 0; block < block_count; ++block) {
        block_capacity = std::max(block_capacity, block_start(block + 1) - block_start(block));
    }
    return ordered_sum(0.0, block_count, block_capacity, [&](std::size_t block, double* terms) {
        const std::size_t first_row = block * kCostBlock;
        const IndexRange rows{first_row, std::min(first_row + kCostBlock, N)};
        return fill_cost_terms(P, Y, dims, rows, sum_Q, terms);
    });
}

}  // namespace ovik
