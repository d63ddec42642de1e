#include "stats/row_attraction.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "stats/row_misfit.h"

namespace ovik {

namespace {

/// Below it the sum of rows and the sum of entries may differ in the sign of a printed zero.
constexpr double kPrintsAsZero = 1e-6;

/// Rows that one thread looks at.
constexpr std::size_t kGrain = 8;

/// Runs `visit(p, squared distance)` for the entries of a row in their order.
template <typename Visit>
void for_each_entry(const EdgeView& edges, std::size_t n, const Visit& visit) {
    for (std::size_t i = edges.row_P[n]; i < edges.row_P[n + 1]; ++i) {
        const double* const own = edges.Y + n * edges.dims;
        const double* const other = edges.Y + edges.col_P[i] * edges.dims;
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < edges.dims; ++d) {
            const double difference = own[d] - other[d];
            squared_distance += difference * difference;
        }
        visit(edges.val_P[i], squared_distance);
    }
}

/// The entries of some rows, added one after the other.
double plain_cost(const EdgeView& edges, IndexRange rows, double Z) {
    double cost = 0.0;
    for (std::size_t n = rows.begin; n < rows.end; ++n) {
        for_each_entry(edges, n, [&cost, Z](double p, double squared_distance) {
            const double Q = 1.0 / (squared_distance + 1.0) / Z + DBL_MIN;
            cost += p * std::log((p + DBL_MIN) / Q);
        });
    }
    return cost;
}

}  // namespace

RowAttraction::RowAttraction(const SparseMatrixView& P, std::size_t N, std::size_t dims)
    : P_(P),
      N_(N),
      dims_(dims),
      pass_(edge_kernels(instruction_set()).pass),
      row_costs_(malloc_array<RowCost>(N)) {
    require_allocated(row_costs_);
}

EdgeView RowAttraction::edgesOf(const double* Y) const {
    return {P_.row_P, P_.col_P, P_.val_P, Y, dims_};
}

void RowAttraction::pass(const double* Y, IndexRange rows, double* forces, bool with_cost) {
    if (forces != nullptr) {
        std::fill(forces + rows.begin * dims_, forces + rows.end * dims_, 0.0);
    }
    pass_(edgesOf(Y), rows.begin, rows.end, forces, with_cost ? row_costs_.get() : nullptr);
}

void RowAttraction::rowCosts(const double* Y, double Z, double* costs) {
    const EdgeView edges = edgesOf(Y);
    parallel_for_each(N_, kGrain, [=](std::size_t n) {
        costs[n] = plain_cost(edges, {n, n + 1}, Z);
    });
}

void RowAttraction::rowMisfits(const double* Y, const double* similarity_sums, double* misfits) {
    const EdgeView edges = edgesOf(Y);
    parallel_for_each(N_, kGrain, [=](std::size_t n) {
        misfits[n] = row_misfit([&edges, n](const auto& visit) { for_each_entry(edges, n, visit); },
                                similarity_sums[n],
                                platform_elementary().log);
    });
}

double RowAttraction::cost(const double* Y, double Z) {
    const EdgeView edges = edgesOf(Y);
    const double log_Z = std::log(Z);
    double cost = 0.0;
    for (std::size_t n = 0; n < N_; ++n) {
        // A row without entries adds nothing, whatever Z is.
        if (edges.row_P[n] == edges.row_P[n + 1]) {
            continue;
        }
        const RowCost& row = row_costs_[n];
        cost += std::isnan(row.log_sum) ? plain_cost(edges, {n, n + 1}, Z)
                                        : row.log_sum + log_Z * row.weight_sum;
    }
    return std::fabs(cost) < kPrintsAsZero ? plain_cost(edges, {0, N_}, Z) : cost;
}

}  // namespace ovik
