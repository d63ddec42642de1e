#pragma once

#include <cstddef>

#include "stats/fit_options.h"

namespace ovik {

/// The course of a fit: which iteration is the last, by how much affinities are exaggerated in the
/// step of an iteration, and which momentum and learning rate that step has.
///
/// The classic schedule exaggerates the stored affinities, until and with iteration
/// `stop_lying_iter`; a change that is set to a negative iteration never comes. The annealed one
/// leaves them as they are and has a factor for the gradient of each iteration.
class Schedule {
  public:
    /// @param rows  of the matrix, which the automatic learning rate follows
    Schedule(const FitOptions& options, std::size_t rows);

    [[nodiscard]] int lastIteration() const { return options_.max_iter; }

    /// The factor of the stored affinities in the first phase; 1 in the annealed schedule.
    [[nodiscard]] double exaggeration() const { return isAnnealed() ? 1.0 : options_.exaggeration; }

    /// Whether the exaggeration of the stored affinities ends with an iteration, after its step and
    /// before its cost.
    [[nodiscard]] bool endsExaggeration(int iteration) const {
        return !isAnnealed() && iteration == options_.stop_lying_iter;
    }

    /// Whether the step of an iteration is taken against exaggerated stored affinities.
    [[nodiscard]] bool isExaggerated(int iteration) const {
        return !isAnnealed() && !liesBehind(iteration, options_.stop_lying_iter);
    }

    /// The factor of the gradient of the step of an iteration, as `Objective::anneal` takes it; 1
    /// in the classic schedule.
    ///
    /// Of the annealed schedule it is `exaggeration` for `hold_iter` iterations, then, with `left`
    /// of the `release_iter` iterations to go, this one counted, 1 + (exaggeration - 1) * (left /
    /// (release_iter + 1)), then 1.
    [[nodiscard]] double annealing(int iteration) const;

    /// The momentum of the step of an iteration.
    ///
    /// That of the annealed schedule is `final_momentum`, but 0.8 at most until the factor is 1:
    /// more than that tears clusters apart while they form.
    [[nodiscard]] double momentum(int iteration) const;

    /// The learning rate of the step of an iteration: `learning_rate`, or, if it is automatic, rows
    /// / the exaggeration of that step, of whichever schedule, but 200 at least.
    [[nodiscard]] double learningRate(int iteration) const;

    /// The iteration after whose step no affinity is exaggerated any more.
    [[nodiscard]] int endOfExaggeration() const;

    /// Whether the cost after an iteration is looked at for `stop_when`: that of every fiftieth
    /// iteration, from the end of exaggeration on.
    [[nodiscard]] bool isMark(int iteration) const;

    /// The first iteration with which `stop_when` may end a fit: that of the second mark.
    [[nodiscard]] long long firstPossibleStop() const;

    /// Whether a fit is to end with an iteration, because the cost has gained less than `stop_when`
    /// times itself since the mark before.
    ///
    /// @param cost         after the iteration
    /// @param marked_cost  after the mark before it; infinite if there is none
    [[nodiscard]] bool isSettled(int iteration, double cost, double marked_cost) const;

  private:
    [[nodiscard]] bool isAnnealed() const { return options_.schedule == ScheduleKind::Annealed; }

    static bool liesBehind(int iteration, int change) { return 0 <= change && change < iteration; }

    FitOptions options_;
    double rows_;
};

}  // namespace ovik
