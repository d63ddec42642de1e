#pragma once

#include <cstddef>

#include "stats/fit_options.h"
#include "util/malloc_array.h"

namespace ovik {

/// Gradient descent with momentum and a gain per element, which adapts itself or stays 1.
///
/// @par Source Jacobs, "Increased rates of convergence through learning rate adaptation",
/// Neural Networks 1:295, 1988
class GradientDescent {
  public:
    /// Starts with no velocity and gains of 1 for an embedding of `count` elements.
    /// Throws WorkMemoryError if the arrays do not fit in memory.
    explicit GradientDescent(std::size_t count, GainKind gains = FitOptions().gains);

    /// The array into which the caller writes the gradient of the next step.
    [[nodiscard]] double* gradient() { return gradient_.get(); }

    /// What the next step depends on beside the gradient: `count` elements each.
    [[nodiscard]] const double* velocity() const { return velocity_.get(); }

    [[nodiscard]] const double* gains() const { return gains_.get(); }

    /// Takes over the velocity and gains of an earlier descent.
    void restore(const double* velocity, const double* gains);

    /// Moves the embedding one step against the gradient.
    ///
    /// An adaptive gain grows by 0.2 where the signs of gradient and velocity differ and shrinks by
    /// a factor of 0.8 where they agree, not below 0.01. The velocity becomes velocity * momentum -
    /// (gain * learning rate) * gradient and is added to Y.
    ///
    /// @param Y  `count` elements, modified
    void step(double* Y, double momentum, double learning_rate = FitOptions().learning_rate);

  private:
    void stepWithoutGains(double* Y, double momentum, double learning_rate);

    std::size_t count_;
    GainKind gain_kind_;
    MallocArray<double> gradient_;
    MallocArray<double> velocity_;
    MallocArray<double> gains_;
};

}  // namespace ovik
