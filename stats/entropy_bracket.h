#pragma once

#include <cstddef>
#include <span>

#include "stats/kernels/trial_sums.h"

namespace ovik {

/// Tells for most precisions beta of a Gaussian, without the affinities themselves, whether a trial
/// would find too much entropy or too little.
///
/// Entropy falls as beta grows. Cheap sums with a known error find where it is the wanted one, and
/// two precisions near by at which it is surely too large and too small for a trial to be accepted.
/// Then nothing but what is between them is left to trials.
class EntropyBracket {
  public:
    /// @param squared_distances  of the points, 0 or more; must outlive the object
    /// @param left_out           the point that takes no part; as many as there are if all do
    EntropyBracket(std::span<const double> squared_distances,
                   std::size_t left_out,
                   double wanted_entropy);

    /// Searches for the wanted entropy.
    ///
    /// @param guess  about where it may be, above 0; what it tells costs or saves time alone
    /// @return what may be the guess for points like these
    double narrow(double guess);

    /// 1.0 if a trial of beta is certain to find more than the wanted entropy by 1e-5 or more, -1.0
    /// if less, and 0.0 if only the trial can tell.
    double sideOf(double beta);

  private:
    /// Entropy above the wanted one, and how far it moves as the logarithm of beta grows.
    struct Trial {
        double difference;
        double slope;
        /// Whether the weights were too small to tell.
        bool has_underflown;
    };

    Trial tryOut(double beta);

    std::span<const double> squared_distances_;
    std::size_t left_out_;
    double wanted_entropy_;
    /// The largest precision known to give too much, and the smallest known to give too little.
    double too_much_ = -1.0;
    double too_little_;
    const TrialKernels& kernels_;
};

}  // namespace ovik
