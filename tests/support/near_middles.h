#pragma once

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "tests/support/exact_functions.h"

namespace ovik::test {

__extension__ using Whole = unsigned __int128;
__extension__ using SignedWhole = __int128;

/// The least k for which step * k mod modulus is from low to high, which are below the modulus: by
/// the steps of Euclid's algorithm. 0 < low <= high.
inline std::optional<Whole> first_within(Whole step, Whole modulus, Whole low, Whole high) {
    if (step == 0) {
        return {};
    }
    if (2 * step > modulus) {
        return first_within(modulus - step, modulus, modulus - high, modulus - low);
    }
    const Whole direct = (low + step - 1) / step;
    if (direct * step <= high) {
        return direct;
    }
    // Between two steps, so that the remainders by the step are in order and not 0.
    const std::optional<Whole> rounds =
        first_within((step - modulus % step) % step, step, low % step, high % step);
    if (!rounds) {
        return {};
    }
    return (low + modulus * *rounds + step - 1) / step;
}

/// The sizes of the values at consecutive doubles as a linear function: about offset + slope * k in
/// parts of 2^-64 of a unit of the last place, without whole units.
struct LinearStretch {
    std::uint64_t offset;
    std::uint64_t slope;
    /// By which the linear function is off in the middle, where it is off most.
    std::uint64_t bend;
    bool has_one_unit;
};

inline LinearStretch linear_stretch(const ExactFunction::Units& first,
                                    const ExactFunction::Units& middle,
                                    const ExactFunction::Units& last,
                                    std::uint64_t length) {
    const auto parts = [](const ExactFunction::Units& units) {
        return static_cast<SignedWhole>(Whole{units.whole} << 64U | units.fraction);
    };
    const SignedWhole rise = parts(last) - parts(first);
    const auto slope = static_cast<std::uint64_t>(rise / static_cast<SignedWhole>(length));
    const auto off =
        static_cast<std::int64_t>(middle.fraction - first.fraction - slope * (length / 2));
    return {first.fraction,
            slope,
            static_cast<std::uint64_t>(std::abs(off)),
            first.exponent == middle.exponent && first.exponent == last.exponent};
}

/// The first k from `k` on at which a linear function is within a distance of the middle of two
/// units.
inline Whole next_near_middle(const LinearStretch& line, std::uint64_t k, std::uint64_t distance) {
    constexpr std::uint64_t kMiddle = std::uint64_t{1} << 63U;
    constexpr Whole kUnit = Whole{1} << 64U;
    const std::uint64_t here = line.offset + line.slope * k;
    const std::uint64_t low = kMiddle - distance - here;
    const std::uint64_t high = kMiddle + distance - here;
    return low == 0 || low > high ? Whole{k}
                                  : k + first_within(line.slope, kUnit, low, high).value_or(kUnit);
}

/// Calls `visit(x, distance)` for arguments x behind `start`, all of its sign, at which the exact
/// value is less than `most` units of the last place from the middle of two doubles.
///
/// Over some consecutive doubles a function is nearly linear, so that its values, without whole
/// units, are those of multiples of a number; `stretches` of doubles are searched, as long as about
/// one of them has to be looked at (Lefevre and Muller, "Worst cases for correct rounding of the
/// elementary functions in double precision", ARITH 15, 2001).
template <typename Visit>
void visit_near_middles(
    ExactFunction& function, double start, int stretches, double most, const Visit& visit) {
    constexpr std::uint64_t kMiddle = std::uint64_t{1} << 63U;
    const auto most_parts = static_cast<std::uint64_t>(most * 0x1p64);
    auto begin = std::bit_cast<std::uint64_t>(start);
    const auto units_at = [&](std::uint64_t k) {
        return function.units(std::bit_cast<double>(begin + k));
    };
    std::uint64_t length = 1024;
    ExactFunction::Units first = units_at(0);
    for (int i = 0; i < stretches; ++i) {
        const ExactFunction::Units last = units_at(length);
        const LinearStretch line = linear_stretch(first, units_at(length / 2), last, length);
        // The bend is that of a parabola but for little, and the slope is cut.
        const std::uint64_t distance = line.bend + line.bend / 64 + most_parts + 2 * length;
        Whole k = line.has_one_unit ? next_near_middle(line, 0, distance) : length;
        while (k < length) {
            const auto at = static_cast<std::uint64_t>(k);
            const auto off = static_cast<std::int64_t>(units_at(at).fraction - kMiddle);
            const auto size = static_cast<std::uint64_t>(std::abs(off));
            if (size < most_parts) {
                visit(std::bit_cast<double>(begin + at), static_cast<double>(size) * 0x1p-64);
            }
            k = next_near_middle(line, at + 1, distance);
        }
        first = last;
        begin += length;
        const double expected =
            static_cast<double>(length) * static_cast<double>(distance) * 0x1p-63;
        if (expected > 1.0) {
            length /= 2;
        } else if (expected < 0.125) {
            length *= 2;
        }
    }
}

}  // namespace ovik::test
