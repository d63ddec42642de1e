#include "stats/gradient_descent.h"

#include <algorithm>

#include "stats/elementwise.h"
#include "util/parallel.h"

namespace ovik {

GradientDescent::GradientDescent(std::size_t count, double learning_rate)
    : count_(count),
      learning_rate_(learning_rate),
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

void GradientDescent::step(double* Y, double momentum) {
    const double* const gradient = gradient_.get();
    double* const velocity = velocity_.get();
    double* const gains = gains_.get();
    const double learning_rate = learning_rate_;
    parallel_for_each(count_, kElementwiseGrain, [=](std::size_t i) {
        gains[i] = next_gain(gains[i], gradient[i], velocity[i]);
        velocity[i] = velocity[i] * momentum - (gains[i] * learning_rate) * gradient[i];
        Y[i] += velocity[i];
    });
}

}  // namespace ovik
