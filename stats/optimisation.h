#pragma once

#include <vector>

#include "stats/fit_state.h"
#include "stats/gradient_descent.h"
#include "stats/objective.h"
#include "stats/schedule.h"
#include "util/matrix_view.h"

namespace ovik {

/// The gradient descent of one embedding, iteration by iteration.
class Optimisation {
  public:
    /// All but the schedule has to outlive the object, and is changed by it.
    ///
    /// @param objective  with exaggerated affinities
    /// @param descent    for the elements of the embedding
    /// @param embedding  the start, rows x output dimensions
    Optimisation(Objective& objective,
                 GradientDescent& descent,
                 MatrixView<double> embedding,
                 const Schedule& schedule);

    /// Takes over a state of an earlier fit of the same shape, before the first iteration.
    void resume(const FitState& state);

    [[nodiscard]] bool isDone() const { return state().isLast(); }

    /// Does the next iteration.
    void iterate();

    /// The state after the iteration done last.
    [[nodiscard]] FitState state() const;

    /// The cost of the embedding as it stands, against the affinities without exaggeration. Ends
    /// exaggeration: no iteration may follow.
    double finalCost();

    /// What each row adds to that cost, which has been asked for.
    std::vector<double> rowCosts();

    /// The misfit of each row (`stats/row_misfit.h`).
    std::vector<double> rowMisfits();

  private:
    [[nodiscard]] bool isFinite() const;

    Objective& objective_;
    GradientDescent& descent_;
    MatrixView<double> embedding_;
    Schedule schedule_;
    IterationReport reached_;
    double marked_cost_ = FitState().marked_cost;
    bool has_gradient_ = false;
};

}  // namespace ovik
