#pragma once

#include <cfloat>
#include <cmath>
#include <cstddef>

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

/// Conditional affinities of one point to others, calibrated to a perplexity.
///
/// Searches the bandwidth for which the entropy of the affinities is log(perplexity), then
/// divides them by their sum. If the attempts run out, the last trial stands. A perplexity of 0 or
/// less or NaN uses up all attempts.
///
/// @param squared_distances  count values
/// @param similarities       count values, written
/// @param attempts           at least 1
/// @param fill               `fill(beta)` writes the unnormalised affinities of a trial
/// @par Source van der Maaten and Hinton, "Visualizing data using t-SNE", JMLR 9:2579, 2008,
/// equation 1
template <typename Fill>
void calibrate_similarities(const double* squared_distances,
                            double* similarities,
                            std::size_t count,
                            double perplexity,
                            int attempts,
                            const Fill& fill) {
    const double wanted_entropy = std::log(perplexity);
    BandwidthSearch search;
    double sum_P = DBL_MIN;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const double beta = search.beta();
        fill(beta);
        sum_P = DBL_MIN;
        double entropy = 0.0;
        for (std::size_t m = 0; m < count; ++m) {
            sum_P += similarities[m];
            entropy += similarities[m] * squared_distances[m] * beta;
        }
        entropy = entropy / sum_P + std::log(sum_P);
        if (search.accept(entropy - wanted_entropy)) {
            break;
        }
    }
    for (std::size_t m = 0; m < count; ++m) {
        similarities[m] = similarities[m] / sum_P;
    }
}

}  // namespace ovik
