#include "stats/gradient_descent.h"

#include <algorithm>

#include "stats/elementwise.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr double kGainIncrease = 0.2;
constexpr double kGainDecay = 0.8;
constexpr double kSmallestGain = 0.01;

/// 0, -1 or 1; a NaN counts as positive.
int sign(double x) {
    if (x == 0.0) {
        return 0;
    }
    return x < 0.0 ? -1 : 1;
}

}  // namespace

GradientDescent::GradientDescent(std::size_t count)
    : count_(count),
      gradient_(malloc_array<double>(count)),
      velocity_(malloc_array<double>(count)),
      gains_(malloc_array<double>(count)) {
    exit_unless_allocated(gradient_, velocity_, gains_);
    std::fill_n(velocity_.get(), count, 0.0);
    std::fill_n(gains_.get(), count, 1.0);
}

void GradientDescent::restore(const double* velocity, const double* gains) {
    std::copy_n(velocity, count_, velocity_.get());
    std::copy_n(gains, count_, gains_.get());
}

void GradientDescent::step(double* Y, double momentum) {
    parallel_for_each(count_, kElementwiseGrain, [&](std::size_t i) {
        const bool same_sign = sign(gradient_[i]) == sign(velocity_[i]);
        const double gain = same_sign ? gains_[i] * kGainDecay : gains_[i] + kGainIncrease;
        gains_[i] = gain < kSmallestGain ? kSmallestGain : gain;
        velocity_[i] = velocity_[i] * momentum - (gains_[i] * kLearningRate) * gradient_[i];
        Y[i] += velocity_[i];
    });
}

}  // namespace ovik
