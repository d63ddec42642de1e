#include "stats/exact_objective.h"

#include <cstdio>

#include "stats/dense_affinities.h"
#include "stats/elementwise.h"
#include "stats/exact_forces.h"
#include "util/format.h"

namespace ovik {

ExactObjective::ExactObjective(
    const double* X, std::size_t N, std::size_t D, std::size_t out_dims, double perplexity)
    : N_(N),
      out_dims_(out_dims) {
    std::fputs("Exact?", stderr);
    P_ = malloc_array<double>(N * N);
    exit_unless_allocated(P_);
    dense_conditional_affinities(X, N, D, P_.get(), perplexity);
    std::fputs("Symmetrizing...\n", stderr);
    add_transpose(P_.get(), N);
    divide_by_sum(P_.get(), N * N);
}

void ExactObjective::exaggerate(double factor) {
    multiply_all(P_.get(), N_ * N_, factor);
}

void ExactObjective::relax(double factor) {
    divide_all(P_.get(), N_ * N_, factor);
}

void ExactObjective::gradient(const double* Y, double* dY) {
    exact_gradient(P_.get(), Y, N_, out_dims_, dY);
}

double ExactObjective::cost(const double* Y) {
    return exact_cost(P_.get(), Y, N_, out_dims_);
}

double ExactObjective::costAndGradient(const double* Y, double* dY) {
    gradient(Y, dY);
    return cost(Y);
}

std::string ExactObjective::report(std::clock_t elapsed) const {
    const long seconds = elapsed / 1000000;
    return "Got input similarities in " + num2string<long>(seconds) + " seconds!";
}

}  // namespace ovik
