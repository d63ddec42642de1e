#pragma once

#include "stats/fit_options.h"

namespace ovik {

/// When a fit changes its course: which iteration is the last, how long affinities are
/// exaggerated, which momentum an iteration has.
///
/// A change that is set to a negative iteration never comes.
class Schedule {
  public:
    explicit Schedule(const FitOptions& options) : options_(options) {}

    [[nodiscard]] int lastIteration() const { return options_.max_iter; }

    /// The factor of the affinities in the first phase.
    [[nodiscard]] double exaggeration() const { return options_.exaggeration; }

    /// Whether early exaggeration ends with an iteration, after its step and before its cost.
    [[nodiscard]] bool endsExaggeration(int iteration) const {
        return iteration == options_.stop_lying_iter;
    }

    /// Whether the step of an iteration is taken against exaggerated affinities.
    [[nodiscard]] bool isExaggerated(int iteration) const {
        return !liesBehind(iteration, options_.stop_lying_iter);
    }

    /// The momentum of the step of an iteration.
    [[nodiscard]] double momentum(int iteration) const {
        return liesBehind(iteration, options_.mom_switch_iter) ? options_.final_momentum
                                                               : options_.momentum;
    }

  private:
    static bool liesBehind(int iteration, int change) { return 0 <= change && change < iteration; }

    FitOptions options_;
};

}  // namespace ovik
