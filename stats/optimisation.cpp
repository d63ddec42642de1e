#include "stats/optimisation.h"

#include <algorithm>
#include <cmath>

#include "results/checkpoint.h"
#include "stats/centring.h"

namespace ovik {

namespace {

/// Whether an iteration lies behind a change of course, which may never come.
bool lies_behind(int iteration, int change) {
    return 0 <= change && change < iteration;
}

}  // namespace

Optimisation::Optimisation(Objective& objective,
                           GradientDescent& descent,
                           Embedding embedding,
                           const Schedule& schedule)
    : objective_(objective),
      descent_(descent),
      embedding_(embedding),
      schedule_(schedule) {
    reached_.max_iter = schedule.max_iter;
}

void Optimisation::resume(const Checkpoint& checkpoint) {
    std::copy(checkpoint.embedding.begin(), checkpoint.embedding.end(), embedding_.Y);
    descent_.restore(checkpoint.velocity.data(), checkpoint.gains.data());
    reached_.iteration = checkpoint.iteration;
    reached_.cost = checkpoint.cost;
    if (lies_behind(checkpoint.iteration + 1, schedule_.stop_lying_iter)) {
        objective_.relax(kEarlyExaggeration);
    }
}

void Optimisation::save(Checkpoint& checkpoint) const {
    checkpoint.iteration = reached_.iteration;
    checkpoint.cost = reached_.cost;
    checkpoint.embedding.assign(embedding_.Y, embedding_.Y + count());
    checkpoint.velocity.assign(descent_.velocity(), descent_.velocity() + count());
    checkpoint.gains.assign(descent_.gains(), descent_.gains() + count());
}

void Optimisation::iterate() {
    double* const Y = embedding_.Y;
    if (!has_gradient_) {
        objective_.gradient(Y, descent_.gradient());
        has_gradient_ = true;
    }
    const int iteration = ++reached_.iteration;
    descent_.step(
        Y, lies_behind(iteration, schedule_.mom_switch_iter) ? kFinalMomentum : kInitialMomentum);
    zero_mean(Y, embedding_.rows, embedding_.out_dims);
    reached_.finite = isFinite();
    if (iteration == schedule_.stop_lying_iter) {
        objective_.relax(kEarlyExaggeration);
    }
    // Until exaggeration ends the cost is that against the exaggerated similarities, on purpose.
    reached_.cost =
        isDone() ? objective_.cost(Y) : objective_.costAndGradient(Y, descent_.gradient());
}

double Optimisation::finalCost() {
    if (lies_behind(reached_.iteration + 1, schedule_.stop_lying_iter)) {
        return reached_.cost;
    }
    objective_.relax(kEarlyExaggeration);
    return objective_.cost(embedding_.Y);
}

/// A coordinate that is not finite made the mean of its column so, and that the whole column: the
/// first row shows it.
bool Optimisation::isFinite() const {
    return embedding_.rows == 0 || std::all_of(embedding_.Y,
                                               embedding_.Y + embedding_.out_dims,
                                               [](double y) { return std::isfinite(y); });
}

}  // namespace ovik
