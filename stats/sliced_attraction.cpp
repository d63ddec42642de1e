#include "stats/sliced_attraction.h"

#include <cfloat>
#include <cmath>
#include <utility>

#include "stats/row_misfit.h"

namespace ovik {

namespace {

/// Below it the sum of sums and the sum of entries may differ in the sign of a printed zero.
constexpr double kPrintsAsZero = 1e-6;

}  // namespace

SlicedAttraction::SlicedAttraction(SlicedMatrix P, std::size_t dims, RealFunction log)
    : P_(std::move(P)),
      dims_(dims),
      log_(log),
      kernels_(slice_kernels(instruction_set())),
      log_sums_(malloc_array<double>(P_.sliceCount() * kSliceRows)) {
    require_allocated(log_sums_);
    if (P_.isReordered()) {
        points_ = malloc_array<double>(P_.rowCount() * dims);
        require_allocated(points_);
    }
}

void SlicedAttraction::prepare(const double* Y) {
    if (points_ != nullptr) {
        P_.pointsInOrder(Y, points_.get());
    }
}

void SlicedAttraction::pass(const double* Y, IndexRange rows, double* forces, bool with_cost) {
    const std::size_t begin = rows.begin / kSliceRows;
    const std::size_t end = (rows.end + kSliceRows - 1) / kSliceRows;
    double* const log_sums = with_cost ? log_sums_.get() : nullptr;
    kernels_.pass(P_.slices(), inOrder(Y), dims_, begin, end, forces, log_sums);
}

double SlicedAttraction::cost(const double* Y, double Z) {
    const AffinitySums& sums = P_.sums();
    const double log_sum = P_.sumOfLanes(log_sums_.get());
    const double cost = sums.entropy + kLogarithmUnit * (log_sum + kLogarithmOffset * sums.weight) +
                        log_(Z) * sums.weight;
    // Not a number, if a guard may matter.
    return std::fabs(cost) >= kPrintsAsZero ? cost : plainCost(Y, Z);
}

/// Runs `visit(p, squared distance)` for the entries of a row in their order.
///
/// @param points  the embedding in the order of the slices
template <typename Visit>
void SlicedAttraction::forEachEntry(const double* Y,
                                    const double* points,
                                    std::size_t row,
                                    const Visit& visit) const {
    const std::size_t point = P_.rankRows().own().begin + row;
    P_.forEachEntry(row, [&, own = Y + point * dims_](std::size_t place, double p) {
        double squared_distance = 0.0;
        for (std::size_t d = 0; d < dims_; ++d) {
            const double difference = own[d] - points[place + d];
            squared_distance += difference * difference;
        }
        visit(p, squared_distance);
    });
}

/// Adds the entries of a row one after the other.
void SlicedAttraction::addEntries(const double* Y, double Z, std::size_t row, double& cost) const {
    forEachEntry(Y, inOrder(Y), row, [this, &cost, Z](double p, double squared_distance) {
        const double Q = 1.0 / (squared_distance + 1.0) / Z + DBL_MIN;
        cost += p * log_((p + DBL_MIN) / Q);
    });
}

/// The entries added one after the other, row by row.
double SlicedAttraction::plainCost(const double* Y, double Z) const {
    return P_.rankRows().ranks().addInTurn(0.0, [&](double cost) {
        for (std::size_t n = 0; n < P_.rowCount(); ++n) {
            addEntries(Y, Z, n, cost);
        }
        return cost;
    });
}

void SlicedAttraction::rowCosts(const double* Y, double Z, double* costs) {
    prepare(Y);
    double* const own = costs + P_.rankRows().own().begin;
    parallel_for_each(P_.rowCount(), kSliceRows, [=, this](std::size_t n) {
        own[n] = 0.0;
        addEntries(Y, Z, n, own[n]);
    });
    P_.rankRows().gather(costs, 1, Errand::Gradients);
}

void SlicedAttraction::rowMisfits(const double* Y, const double* similarity_sums, double* misfits) {
    prepare(Y);
    const std::size_t first = P_.rankRows().own().begin;
    parallel_for_each(P_.rowCount(), kSliceRows, [=, this](std::size_t n) {
        const auto for_each_entry = [&](const auto& visit) {
            forEachEntry(Y, inOrder(Y), n, visit);
        };
        misfits[first + n] = row_misfit(for_each_entry, similarity_sums[first + n], log_);
    });
    P_.rankRows().gather(misfits, 1, Errand::Gradients);
}

}  // namespace ovik
