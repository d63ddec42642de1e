#pragma once

#include <algorithm>
#include <cmath>

namespace ovik {

/// What the values of candidates tell of the squares of their distances from a target, which are
/// meant here times the square of the frame's scale.
///
/// For a target of squared norm a and a value v, v + a (1 - e) is at most the square, and below it
/// by 2 e (a + b) at most, if e is the error's share and b the squared norm of the candidate: at
/// most 2 a and twice the square. What the bounds have beyond that is far above the errors of
/// squares in double precision.
class ValueBounds {
  public:
    /// @param squared_norm  of the target
    /// @param error_share   as `packing_error_share` has it
    ValueBounds(double squared_norm, double error_share)
        : squared_norm_(squared_norm),
          error_share_(error_share),
          least_(squared_norm * (1.0 - error_share)) {}

    /// Above a square, by more than it may be wrong.
    [[nodiscard]] double above(double squared) const {
        return squared * (1.0 + error_share_) + kUnderflow;
    }

    /// Above the squares of all candidates that do not exceed a value.
    [[nodiscard]] double aboveSquaresOf(float value) const {
        return (std::max(value + least_, 0.0) + 7.0 * error_share_ * squared_norm_) *
                   (1.0 + 5.0 * error_share_) +
               kUnderflow;
    }

    /// A value that no candidate exceeds whose square is at most as large.
    [[nodiscard]] float limit(double squared) const { return roundedUp(squared - least_); }

    /// Candidates of smaller values have smaller squares.
    [[nodiscard]] float low(double squared) const {
        return -roundedUp(least_ + 7.0 * error_share_ * squared_norm_ + kUnderflow -
                          squared * (1.0 - 5.0 * error_share_));
    }

  private:
    /// A square below which underflow in single precision may count.
    static constexpr double kUnderflow = 1e-30;

    /// Not below x.
    static float roundedUp(double x) {
        const auto rounded = static_cast<float>(x);
        return rounded < x ? std::nextafterf(rounded, HUGE_VALF) : rounded;
    }

    double squared_norm_;
    double error_share_;
    double least_;
};

}  // namespace ovik
