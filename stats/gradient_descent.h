#pragma once

#include <cstddef>

#include "stats/fit_options.h"
#include "util/malloc_array.h"

namespace ovik {

/// The gain of an element for its next step: it grows by 0.2 where the signs of gradient and
/// velocity differ and shrinks by a factor of 0.8 where they agree, not below 0.01. Zero has a sign
/// of its own, and a NaN counts as positive.
inline double next_gain(double gain, double gradient, double velocity) {
    constexpr double kIncrease = 0.2;
    constexpr double kDecay = 0.8;
    constexpr double kSmallest = 0.01;
    // Without branches: the processor would guess them wrong every other time.
    const auto sign = [](double a) {
        return static_cast<int>(a < 0.0) + 2 * static_cast<int>(a == 0.0);
    };
    const double decayed = gain * kDecay;
    const double increased = gain + kIncrease;
    const double next = sign(gradient) == sign(velocity) ? decayed : increased;
    return next < kSmallest ? kSmallest : next;
}

/// Gradient descent with momentum and an adaptive gain per element.
///
/// @par Source Jacobs, "Increased rates of convergence through learning rate adaptation",
/// Neural Networks 1:295, 1988
class GradientDescent {
  public:
    /// Starts with no velocity and gains of 1 for an embedding of `count` elements.
    /// Throws WorkMemoryError if the arrays do not fit in memory.
    explicit GradientDescent(std::size_t count, double learning_rate = FitOptions().learning_rate);

    /// The array into which the caller writes the gradient of the next step.
    [[nodiscard]] double* gradient() { return gradient_.get(); }

    /// What the next step depends on beside the gradient: `count` elements each.
    [[nodiscard]] const double* velocity() const { return velocity_.get(); }

    [[nodiscard]] const double* gains() const { return gains_.get(); }

    /// Takes over the velocity and gains of an earlier descent.
    void restore(const double* velocity, const double* gains);

    /// Moves the embedding one step against the gradient.
    ///
    /// Gains become what `next_gain` says. The velocity becomes velocity * momentum - (gain *
    /// learning rate) * gradient and is added to Y.
    ///
    /// @param Y  `count` elements, modified
    void step(double* Y, double momentum);

  private:
    std::size_t count_;
    double learning_rate_;
    MallocArray<double> gradient_;
    MallocArray<double> velocity_;
    MallocArray<double> gains_;
};

}  // namespace ovik
