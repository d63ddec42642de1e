#include "stats/exact_objective.h"

#include <cmath>
#include <utility>

#include "stats/add_transpose.h"
#include "stats/elementwise.h"
#include "stats/exact_forces.h"
#include "util/format.h"

namespace ovik {

namespace {

/// Fewest points for which affinities are stored by panels, so that the forces are computed side
/// by side.
constexpr std::size_t kFewestInPanels = 64;

/// Below it the quick cost and the sum in order may differ in the sign of a printed zero.
constexpr double kPrintsAsZero = 1e-6;

}  // namespace

ExactObjective::ExactObjective(MatrixView<const double> X,
                               std::size_t out_dims,
                               double perplexity,
                               const FitNotes& notes)
    : ExactObjective(X,
                     out_dims,
                     calibrated_row({perplexity}, platform_elementary()),
                     platform_elementary().log,
                     notes) {}

ExactObjective::ExactObjective(MatrixView<const double> X,
                               std::size_t out_dims,
                               const DenseRow& fill_row,
                               RealFunction log,
                               const FitNotes& notes,
                               DenseAffinities affinities)
    : N_(X.rows),
      out_dims_(out_dims),
      log_(log),
      in_panels_(false),
      diagonal_(malloc_array<double>(X.rows)),
      forces_(X.rows, out_dims, log) {
    tell(notes, FitNote::ExactMethod);
    P_ = malloc_array<double>(panel_matrix_size(N_));
    require_allocated(P_, diagonal_);
    affinities(X, P_.get(), fill_row, notes);
    tell(notes, FitNote::Symmetrizing);
    add_transpose(P_.get(), N_);
    divide_by_sum(P_.get(), N_ * N_);
    // One sum divides all entries, so that a NaN among them has made all of them NaN.
    if (N_ >= kFewestInPanels && out_dims > 0 && std::isfinite(P_[0])) {
        movePIntoPanels();
    }
}

void ExactObjective::movePIntoPanels() {
    for (std::size_t n = 0; n < N_; ++n) {
        diagonal_[n] = std::exchange(P_[n * N_ + n], 0.0);
    }
    rows_to_panels(P_.get(), N_);
    in_panels_ = true;
    forces_.takeAffinities(P_.get(), diagonal_.get());
}

void ExactObjective::movePIntoRows() {
    panels_to_rows(P_.get(), N_);
    for (std::size_t n = 0; n < N_; ++n) {
        P_[n * N_ + n] = diagonal_[n];
    }
    in_panels_ = false;
}

void ExactObjective::exaggerate(double factor) {
    multiply_all(P_.get(), entryCount(), factor);
    if (in_panels_) {
        multiply_all(diagonal_.get(), N_, factor);
        forces_.takeAffinities(P_.get(), diagonal_.get());
    }
}

void ExactObjective::endExaggeration(double factor) {
    divide_all(P_.get(), entryCount(), factor);
    if (in_panels_) {
        divide_all(diagonal_.get(), N_, factor);
        forces_.takeAffinities(P_.get(), diagonal_.get());
    }
}

/// Hands the embedding over to the quick way. An embedding that has left the range of that for once
/// will not be back: P is brought into rows, and the general way takes over.
bool ExactObjective::takeForPanels(const double* Y) {
    if (in_panels_ && !forces_.take(Y)) {
        movePIntoRows();
    }
    return in_panels_;
}

void ExactObjective::anneal(double factor) {
    annealing_ = factor;
    forces_.anneal(factor);
}

void ExactObjective::gradient(const double* Y, double* dY) {
    if (takeForPanels(Y)) {
        forces_.gradient(dY);
    } else {
        exact_gradient(P_.get(), Y, N_, out_dims_, dY, annealing_);
    }
}

double ExactObjective::costAndGradient(const double* Y, double* dY) {
    if (takeForPanels(Y)) {
        return unlessZero(forces_.cost(dY), Y);
    }
    exact_gradient(P_.get(), Y, N_, out_dims_, dY, annealing_);
    return exact_cost(P_.get(), Y, N_, out_dims_, log_);
}

double ExactObjective::cost(const double* Y) {
    if (takeForPanels(Y)) {
        return unlessZero(forces_.cost(nullptr), Y);
    }
    return exact_cost(P_.get(), Y, N_, out_dims_, log_);
}

void ExactObjective::rowCosts(const double* Y, double* costs) {
    if (in_panels_) {
        movePIntoRows();
    }
    exact_row_costs(P_.get(), Y, N_, out_dims_, log_, costs);
}

void ExactObjective::rowMisfits(const double* Y, const double* similarity_sums, double* misfits) {
    if (in_panels_) {
        movePIntoRows();
    }
    exact_row_misfits(P_.get(), {Y, N_, out_dims_}, similarity_sums, log_, misfits);
}

/// A cost that the quick way gave, or, where that is printed as zero, the sum in order.
double ExactObjective::unlessZero(double cost, const double* Y) {
    if (std::fabs(cost) >= kPrintsAsZero) {
        return cost;
    }
    movePIntoRows();
    return exact_cost(P_.get(), Y, N_, out_dims_, log_);
}

std::string ExactObjective::report(std::clock_t elapsed) const {
    const long seconds = elapsed / 1000000;
    return "Got input similarities in " + num2string<long>(seconds) + " seconds!";
}

}  // namespace ovik
