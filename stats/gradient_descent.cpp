#include "stats/gradient_descent.h"

#include <algorithm>

#include "stats/kernels/descent_step.h"
#include "util/instruction_set.h"
#include "util/kernel_dispatch.h"
#include "util/parallel.h"

namespace ovik {

OVIK_DISPATCH_KERNELS(DescentKernels, kDescentKernels, descent_kernels)

namespace {

/// Fewest elements for which another thread pays.
constexpr std::size_t kStepGrain = 2048;

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
    const DescentKernels& kernels = descent_kernels(instruction_set());
    parallel_for(count_, kStepGrain, [&](std::size_t /*worker*/, IndexRange range) {
        const std::size_t first = range.begin;
        kernels.step({gradient_.get() + first,
                      velocity_.get() + first,
                      gains_.get() + first,
                      Y + first,
                      range.size()},
                     learning_rate,
                     momentum);
    });
}

void GradientDescent::stepWithoutGains(double* Y, double momentum, double learning_rate) {
    const double* const gradient = gradient_.get();
    double* const velocity = velocity_.get();
    parallel_for_each(count_, kStepGrain, [=](std::size_t i) {
        velocity[i] = velocity[i] * momentum - learning_rate * gradient[i];
        Y[i] += velocity[i];
    });
}

}  // namespace ovik
