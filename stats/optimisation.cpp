#include "stats/optimisation.h"

#include <algorithm>
#include <cmath>

#include "stats/centring.h"
#include "stats/row_misfit.h"

namespace ovik {

Optimisation::Optimisation(Objective& objective,
                           GradientDescent& descent,
                           MatrixView<double> embedding,
                           const Schedule& schedule)
    : objective_(objective),
      descent_(descent),
      embedding_(embedding),
      schedule_(schedule) {
    reached_.max_iter = schedule.lastIteration();
}

void Optimisation::resume(const FitState& state) {
    std::copy(state.embedding.begin(), state.embedding.end(), embedding_.values);
    descent_.restore(state.velocity.data(), state.gains.data());
    reached_.iteration = state.reached.iteration;
    reached_.cost = state.reached.cost;
    marked_cost_ = state.marked_cost;
    reached_.settled = schedule_.isSettled(reached_.iteration, reached_.cost, marked_cost_);
    if (!schedule_.isExaggerated(reached_.iteration + 1)) {
        objective_.endExaggeration(schedule_.exaggeration());
    }
}

FitState Optimisation::state() const {
    return {reached_,
            embedding_.all(),
            {descent_.velocity(), embedding_.size()},
            {descent_.gains(), embedding_.size()},
            marked_cost_};
}

void Optimisation::iterate() {
    double* const Y = embedding_.values;
    if (schedule_.isMark(reached_.iteration)) {
        marked_cost_ = reached_.cost;
    }
    const int iteration = ++reached_.iteration;
    if (!has_gradient_) {
        objective_.anneal(schedule_.annealing(iteration));
        objective_.gradient(Y, descent_.gradient());
        has_gradient_ = true;
    }
    descent_.step(Y, schedule_.momentum(iteration), schedule_.learningRate(iteration));
    zero_mean(Y, embedding_.rows, embedding_.columns);
    reached_.finite = isFinite();
    if (schedule_.endsExaggeration(iteration)) {
        objective_.endExaggeration(schedule_.exaggeration());
    }
    // Until exaggeration ends the cost is that against the exaggerated affinities, on purpose.
    objective_.anneal(schedule_.annealing(iteration + 1));
    reached_.cost =
        isDone() ? objective_.cost(Y) : objective_.costAndGradient(Y, descent_.gradient());
    reached_.settled = schedule_.isSettled(iteration, reached_.cost, marked_cost_);
}

double Optimisation::finalCost() {
    if (!schedule_.isExaggerated(reached_.iteration + 1)) {
        return reached_.cost;
    }
    objective_.endExaggeration(schedule_.exaggeration());
    return objective_.cost(embedding_.values);
}

std::vector<double> Optimisation::rowCosts() {
    std::vector<double> costs(embedding_.rows);
    objective_.rowCosts(embedding_.values, costs.data());
    return costs;
}

std::vector<double> Optimisation::rowMisfits() {
    std::vector<double> sums(embedding_.rows);
    row_similarity_sums(embedding_.values, embedding_.rows, embedding_.columns, sums.data());
    std::vector<double> misfits(embedding_.rows);
    objective_.rowMisfits(embedding_.values, sums.data(), misfits.data());
    return misfits;
}

/// A coordinate that is not finite made the mean of its column so, and that the whole column: the
/// first row shows it.
bool Optimisation::isFinite() const {
    return embedding_.rows == 0 || std::all_of(embedding_.values,
                                               embedding_.values + embedding_.columns,
                                               [](double y) { return std::isfinite(y); });
}

}  // namespace ovik
