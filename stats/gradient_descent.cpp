#include "stats/gradient_descent.h"

#include <algorithm>

#include "stats/elementwise.h"
#include "util/parallel.h"

namespace ovik {

namespace {

constexpr double kGainIncrease = 0.2;
constexpr double kGainDecay = 0.8;
constexpr double kSmallestGain = 0.01;

/// Whether both are zero, both negative or both neither; a NaN counts as positive. Without
/// branches: the processor would guess them wrong every other time.
bool have_same_sign(double a, double b) {
    return static_cast<int>(a < 0.0) + 2 * static_cast<int>(a == 0.0) ==
           static_cast<int>(b < 0.0) + 2 * static_cast<int>(b == 0.0);
}

}  // namespace

GradientDescent::GradientDescent(std::size_t count, GainKind gains)
    : count_(count),
      gain_kind_(gains),
      gradient_(malloc_array<double>(count)),
      velocity_(malloc_array<double>(count)),
      gains_(malloc_array<double>(count)) {
    require_allocated(gradient_, velocity_, gains_);
    std::fill_n(velocity_.get(), count, 0.0);
    std::fill_n(gains_.get(), count, 1.0);
}

void GradientDescent::restore(const double* velocity, const double* gains) {
    std::copy_n(velocity, count_, velocity_.get());
    std::copy_n(gains, count_, gains_.get());
}

void GradientDescent::step(double* Y, double momentum, double learning_rate) {
    if (gain_kind_ == GainKind::Constant) {
        stepWithoutGains(Y, momentum, learning_rate);
        return;
    }
    const double* const gradient = gradient_.get();
    double* const velocity = velocity_.get();
    double* const gains = gains_.get();
    parallel_for_each(count_, kElementwiseGrain, [=](std::size_t i) {
        const double decayed = gains[i] * kGainDecay;
        const double increased = gains[i] + kGainIncrease;
        const double gain = have_same_sign(gradient[i], velocity[i]) ? decayed : increased;
        gains[i] = gain < kSmallestGain ? kSmallestGain : gain;
        velocity[i] = velocity[i] * momentum - (gains[i] * learning_rate) * gradient[i];
        Y[i] += velocity[i];
    });
}

void GradientDescent::stepWithoutGains(double* Y, double momentum, double learning_rate) {
    const double* const gradient = gradient_.get();
    double* const velocity = velocity_.get();
    parallel_for_each(count_, kElementwiseGrain, [=](std::size_t i) {
        velocity[i] = velocity[i] * momentum - learning_rate * gradient[i];
        Y[i] += velocity[i];
    });
}

}  // namespace ovik
