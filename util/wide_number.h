#pragma once

#include <array>
#include <cstdint>

namespace ovik {

/// A number from 0 to below 2^16 in steps of 2^-240: enough places that no exponential or logarithm
/// of a double lies too near the middle of two doubles to be rounded.
///
/// @par Source Lefevre and Muller, "Worst cases for correct rounding of the elementary functions in
/// double precision", ARITH 15, 2001: 2^-120 of the value is enough
class WideNumber {
  public:
    static constexpr int kFractionBits = 240;
    /// From the lowest.
    using Limbs = std::array<std::uint64_t, 4>;

    constexpr WideNumber() = default;

    constexpr explicit WideNumber(const Limbs& limbs) : limbs_(limbs) {}

    /// A whole number below 2^16.
    static WideNumber ofWhole(std::uint64_t whole);

    /// significand * 2^exponent, which is below 2^16; what lies below the last place is cut off.
    static WideNumber ofScaled(std::uint64_t significand, int exponent);

    [[nodiscard]] bool isZero() const;

    [[nodiscard]] bool operator<(const WideNumber& other) const;

    /// The sum, which is below 2^16.
    [[nodiscard]] WideNumber operator+(const WideNumber& other) const;

    /// The difference from a number that is no larger.
    [[nodiscard]] WideNumber operator-(const WideNumber& other) const;

    /// The product, which is below 2^16, at most 2^-240 too small.
    [[nodiscard]] WideNumber operator*(const WideNumber& other) const;

    [[nodiscard]] WideNumber operator*(std::uint32_t factor) const;

    /// At most 2^-240 too small.
    [[nodiscard]] WideNumber operator/(std::uint32_t divisor) const;

    /// Divided by 2^places, 0 to 255; at most 2^-240 too small.
    [[nodiscard]] WideNumber halved(unsigned int places) const;

    /// The number, which is above 0, times 2^exponent as a double, of two equally near ones the
    /// larger; infinity where it is too large. At least half the least double.
    [[nodiscard]] double rounded(int exponent) const;

  private:
    [[nodiscard]] int highestBit() const;

    Limbs limbs_{};
};

}  // namespace ovik
