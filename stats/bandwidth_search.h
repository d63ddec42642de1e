#pragma once

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <span>

#include "stats/entropy_bracket.h"
#include "util/elementary.h"

namespace ovik {

/// Bisection for the precision beta of the Gaussian whose affinities have a wanted entropy.
class BandwidthSearch {
  public:
    [[nodiscard]] double beta() const { return beta_; }

    /// Takes the entropy of the last trial minus the wanted one.
    ///
    /// @return whether they agree to within 1e-5; otherwise beta has moved on: doubled or halved
    /// while one side has no bound, else to the middle of the bounds
    bool accept(double entropy_difference) {
        if (entropy_difference < 1e-5 && entropy_difference > -1e-5) {
            return true;
        }
        if (entropy_difference > 0.0) {
            min_beta_ = beta_;
            beta_ = std::fabs(max_beta_) == DBL_MAX ? beta_ + beta_ : 0.5 * (beta_ + max_beta_);
        } else {
            max_beta_ = beta_;
            beta_ = std::fabs(min_beta_) == DBL_MAX ? beta_ * 0.5 : 0.5 * (beta_ + min_beta_);
        }
        return false;
    }

  private:
    double beta_ = 1.0;
    double min_beta_ = -DBL_MAX;
    double max_beta_ = DBL_MAX;
};

/// The points whose affinities to one are calibrated.
struct CalibratedPoints {
    std::span<const double> squared_distances;
    /// As many values, written.
    double* similarities;
    /// The point itself, if it is among them, at distance 0, to which `fill` gives DBL_MIN at most;
    /// else as many as there are points.
    std::size_t left_out;
};

/// Conditional affinities of one point to others, calibrated to a perplexity.
///
/// Searches the bandwidth for which the entropy of the affinities is log(perplexity), then
/// divides them by their sum. If the attempts run out, the last trial stands. A perplexity of 0 or
/// less or NaN uses up all attempts. Attempts whose outcome is certain beforehand are passed over.
///
/// @param attempts  at least 1
/// @param guess     about where the precision may be, above 0: saves time, without effect on
/// results
/// @param log       the natural logarithm
/// @param fill      `fill(beta)` writes the unnormalised affinities of a trial:
///                  exp(-beta * squared distance), rounded in any way
/// @return a guess for points like these
/// @par Source van der Maaten and Hinton, "Visualizing data using t-SNE", JMLR 9:2579, 2008,
/// equation 1
template <typename Fill>
double calibrate_similarities(const CalibratedPoints& points,
                              double perplexity,
                              int attempts,
                              double guess,
                              RealFunction log,
                              const Fill& fill) {
    const double wanted_entropy = log(perplexity);
    double* const similarities = points.similarities;
    const std::size_t count = points.squared_distances.size();
    EntropyBracket bracket(points.squared_distances, points.left_out, wanted_entropy);
    const double next_guess = bracket.narrow(guess);
    BandwidthSearch search;
    double sum_P = DBL_MIN;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const double beta = search.beta();
        const double side = attempt + 1 < attempts ? bracket.sideOf(beta) : 0.0;
        if (side != 0.0) {
            search.accept(side);
            continue;
        }
        fill(beta);
        sum_P = DBL_MIN;
        double entropy = 0.0;
        for (std::size_t m = 0; m < count; ++m) {
            sum_P += similarities[m];
            entropy += similarities[m] * points.squared_distances[m] * beta;
        }
        entropy = entropy / sum_P + log(sum_P);
        if (search.accept(entropy - wanted_entropy)) {
            break;
        }
    }
    for (std::size_t m = 0; m < count; ++m) {
        similarities[m] = similarities[m] / sum_P;
    }
    return next_guess;
}

}  // namespace ovik
