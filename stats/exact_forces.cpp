#include "stats/exact_forces.h"

#include <cfloat>
#include <cmath>
#include <numeric>

#include "stats/point_columns.h"
#include "stats/row_misfit.h"
#include "util/malloc_array.h"
#include "util/ordered_sum.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// The unnormalised similarities of point n to all points; the one at n is set to `diagonal`.
void fill_similarities(const PointColumns& columns, std::size_t n, double diagonal, double* q) {
    columns.squaredDistancesFrom(n, q);
    for (std::size_t m = 0; m < columns.pointCount(); ++m) {
        q[m] = 1.0 / (q[m] + 1.0);
    }
    q[n] = diagonal;
}

/// `start` plus the similarities of all pairs, row after row.
double sum_similarities(const PointColumns& columns, double start) {
    const std::size_t N = columns.pointCount();
    return ordered_sum(start, N, N, [&](std::size_t n, double* q) {
        // Zero on the diagonal: adding it changes no bit of a sum of positive numbers.
        fill_similarities(columns, n, 0.0, q);
        return N;
    });
}

/// The sum over m != n, in order, of (Y_n - Y_m) * multipliers[m] in one dimension.
double weighted_offset_sum(const double* coordinates,
                           std::size_t n,
                           std::size_t N,
                           const double* multipliers) {
    const double own = coordinates[n];
    double sum = 0.0;
    for (std::size_t m = 0; m < n; ++m) {
        sum += (own - coordinates[m]) * multipliers[m];
    }
    for (std::size_t m = n + 1; m < N; ++m) {
        sum += (own - coordinates[m]) * multipliers[m];
    }
    return sum;
}

}  // namespace

void exact_gradient(
    const double* P, const double* Y, std::size_t N, std::size_t dims, double* gradient) {
    exact_gradient(P, Y, N, dims, gradient, 1.0);
}

void exact_gradient(const double* P,
                    const double* Y,
                    std::size_t N,
                    std::size_t dims,
                    double* gradient,
                    double annealing) {
    const PointColumns columns(Y, N, dims);
    const double sum_Q = annealing * sum_similarities(columns, 0.0);
    const auto buffers = malloc_array<double>(static_cast<std::size_t>(worker_count(N)) * N);
    require_allocated(buffers);
    parallel_for(N, 1, [&](std::size_t worker, IndexRange rows) {
        double* const multipliers = buffers.get() + worker * N;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            fill_similarities(columns, n, 0.0, multipliers);
            for (std::size_t m = 0; m < N; ++m) {
                const double q = multipliers[m];
                multipliers[m] = q * (P[n * N + m] - q / sum_Q);
            }
            for (std::size_t d = 0; d < dims; ++d) {
                gradient[n * dims + d] =
                    annealing * weighted_offset_sum(columns.column(d), n, N, multipliers);
            }
        }
    });
}

namespace {

/// The terms of a row of P in the cost.
void fill_cost_terms(const double* P,
                     const PointColumns& columns,
                     std::size_t n,
                     double sum_Q,
                     RealFunction log,
                     double* terms) {
    const std::size_t N = columns.pointCount();
    fill_similarities(columns, n, DBL_MIN, terms);
    for (std::size_t m = 0; m < N; ++m) {
        const double p = P[n * N + m];
        const double Q = terms[m] / sum_Q;
        terms[m] = p * log((p + DBL_MIN) / (Q + DBL_MIN));
    }
}

}  // namespace

double exact_cost(const double* P, const double* Y, std::size_t N, std::size_t dims) {
    return exact_cost(P, Y, N, dims, platform_elementary().log);
}

double exact_cost(
    const double* P, const double* Y, std::size_t N, std::size_t dims, RealFunction log) {
    const PointColumns columns(Y, N, dims);
    const double sum_Q = sum_similarities(columns, DBL_MIN);
    return ordered_sum(0.0, N, N, [&](std::size_t n, double* terms) {
        fill_cost_terms(P, columns, n, sum_Q, log, terms);
        return N;
    });
}

void exact_row_costs(const double* P,
                     const double* Y,
                     std::size_t N,
                     std::size_t dims,
                     RealFunction log,
                     double* costs) {
    const PointColumns columns(Y, N, dims);
    const double sum_Q = sum_similarities(columns, DBL_MIN);
    const auto buffers = malloc_array<double>(static_cast<std::size_t>(worker_count(N)) * N);
    require_allocated(buffers);
    parallel_for(N, 1, [&](std::size_t worker, IndexRange rows) {
        double* const terms = buffers.get() + worker * N;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            fill_cost_terms(P, columns, n, sum_Q, log, terms);
            costs[n] = std::accumulate(terms, terms + N, 0.0);
        }
    });
}

namespace {

/// The misfit of row n by all entries but that of the diagonal.
double misfit_of(const double* row_P,
                 const double* squared_distances,
                 std::size_t n,
                 std::size_t N,
                 double similarity_sum,
                 RealFunction log) {
    const auto for_each_entry = [=](const auto& visit) {
        for (std::size_t m = 0; m < N; ++m) {
            if (m != n) {
                visit(row_P[m], squared_distances[m]);
            }
        }
    };
    return row_misfit(for_each_entry, similarity_sum, log);
}

}  // namespace

void exact_row_misfits(const double* P,
                       MatrixView<const double> Y,
                       const double* similarity_sums,
                       RealFunction log,
                       double* misfits) {
    const std::size_t N = Y.rows;
    const PointColumns columns(Y.values, N, Y.columns);
    const auto buffers = malloc_array<double>(static_cast<std::size_t>(worker_count(N)) * N);
    require_allocated(buffers);
    parallel_for(N, 1, [&](std::size_t worker, IndexRange rows) {
        double* const squared_distances = buffers.get() + worker * N;
        for (std::size_t n = rows.begin; n < rows.end; ++n) {
            columns.squaredDistancesFrom(n, squared_distances);
            misfits[n] = misfit_of(P + n * N, squared_distances, n, N, similarity_sums[n], log);
        }
    });
}

}  // namespace ovik
