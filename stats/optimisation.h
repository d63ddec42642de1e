#pragma once

#include <cstddef>

#include "stats/gradient_descent.h"
#include "stats/iteration_report.h"
#include "stats/objective.h"

namespace ovik {

struct Checkpoint;

constexpr double kEarlyExaggeration = 12.0;
constexpr double kInitialMomentum = 0.5;
constexpr double kFinalMomentum = 0.8;

/// When the optimisation changes course and when it ends.
struct Schedule {
    int max_iter;
    int stop_lying_iter;
    int mom_switch_iter;
};

/// An embedding, row-major, rows x out_dims.
struct Embedding {
    double* Y;
    std::size_t rows;
    std::size_t out_dims;
};

/// The gradient descent of one embedding, iteration by iteration.
class Optimisation {
  public:
    /// All but the schedule has to outlive the object, and is changed by it.
    ///
    /// @param objective  with exaggerated similarities
    /// @param descent    for the elements of the embedding
    /// @param embedding  the start
    Optimisation(Objective& objective,
                 GradientDescent& descent,
                 Embedding embedding,
                 const Schedule& schedule);

    /// Takes over the state of an earlier fit of the same shape, before the first iteration.
    void resume(const Checkpoint& checkpoint);

    /// Copies the state into a checkpoint; not the run that it is of.
    void save(Checkpoint& checkpoint) const;

    [[nodiscard]] bool isDone() const { return reached_.iteration >= reached_.max_iter; }

    /// Does the next iteration.
    void iterate();

    /// The iteration done last.
    [[nodiscard]] const IterationReport& reached() const { return reached_; }

    /// The cost of the embedding as it stands, against the similarities without exaggeration. Ends
    /// exaggeration: no iteration may follow.
    double finalCost();

  private:
    [[nodiscard]] std::size_t count() const { return embedding_.rows * embedding_.out_dims; }

    [[nodiscard]] bool isFinite() const;

    Objective& objective_;
    GradientDescent& descent_;
    Embedding embedding_;
    Schedule schedule_;
    IterationReport reached_;
    bool has_gradient_ = false;
};

}  // namespace ovik
