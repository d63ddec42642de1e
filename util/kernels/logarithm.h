#pragma once

#include "util/kernels/lanes.h"

/// Natural logarithms in lanes.

namespace ovik::OVIK_KERNELS {

/// 1 / (1 + j / 16), rounded, for j = 0 to 15.
constexpr double kReciprocals[16] = {
    0x1.0000000000000p+0,
    0x1.e1e1e1e1e1e1ep-1,
    0x1.c71c71c71c71cp-1,
    0x1.af286bca1af28p-1,
    0x1.999999999999ap-1,
    0x1.8618618618618p-1,
    0x1.745d1745d1746p-1,
    0x1.642c8590b2164p-1,
    0x1.5555555555555p-1,
    0x1.47ae147ae147bp-1,
    0x1.3b13b13b13b14p-1,
    0x1.2f684bda12f68p-1,
    0x1.2492492492492p-1,
    0x1.1a7b9611a7b96p-1,
    0x1.1111111111111p-1,
    0x1.0842108421084p-1,
};

/// The logarithms of 1 / kReciprocals[j].
constexpr double kLogarithms[16] = {
    0.0,
    0x1.f0a30c01162a8p-5,
    0x1.e27076e2af2eap-4,
    0x1.5ff3070a793d6p-3,
    0x1.c8ff7c79a9a20p-3,
    0x1.1675cababa60fp-2,
    0x1.4618bc21c5ec2p-2,
    0x1.739d7f6bbd007p-2,
    0x1.9f323ecbf984dp-2,
    0x1.c8ff7c79a9a21p-2,
    0x1.f128f5faf06ecp-2,
    0x1.0be72e4252a83p-1,
    0x1.1e85f5e7040d1p-1,
    0x1.307d7334f10bep-1,
    0x1.41d8fe84672afp-1,
    0x1.52a2d265bc5abp-1,
};

/// c0 + c1 * r
inline Lanes pair(Lanes r, double c0, double c1) {
    return add(broadcast(c0), multiply(broadcast(c1), r));
}

/// The logarithms of normal positive numbers, to about 2e-16 absolute or relative, whichever is
/// more; exactly 0 for 1. What other numbers give has no meaning.
///
/// x is 2^k * (1 + r) / kReciprocals[j] with |r| at most 1 / 32, and the logarithm of 1 + r is its
/// power series.
inline Lanes logarithm(Lanes x) {
    // Half of a step of the table, so that numbers go to the nearest step: of a number just below
    // a power of two, to the first one of that power.
    const Integers shifted = add(bits(x), broadcast_integer(std::int64_t{1} << 47));
    const Integers exponent = shift_right<52>(shifted);
    const Integers j = bit_and(shift_right<48>(shifted), broadcast_integer(15));
    const Integers scale = shift_left<52>(subtract(exponent, broadcast_integer(1023)));
    const Lanes mantissa = from_bits(subtract(bits(x), scale));
    const Lanes r = subtract(multiply(mantissa, look_up(kReciprocals, j)), broadcast(1.0));
    // From r^2 on, in pairs of terms: short chains of operations that can run side by side.
    const Lanes r2 = multiply(r, r);
    const Lanes r4 = multiply(r2, r2);
    const Lanes low = add(pair(r, -1.0 / 2, 1.0 / 3), multiply(r2, pair(r, -1.0 / 4, 1.0 / 5)));
    const Lanes high = add(pair(r, -1.0 / 6, 1.0 / 7), multiply(r2, pair(r, -1.0 / 8, 1.0 / 9)));
    const Lanes last = multiply(multiply(r4, r4), broadcast(-1.0 / 10));
    const Lanes series = add(low, add(multiply(r4, high), last));
    const Lanes log_mantissa = add(r, multiply(r2, series));
    // The exponent as the low bits of 2^52 + exponent.
    constexpr std::int64_t kTwoTo52 = 0x4330000000000000;
    const Lanes k = subtract(from_bits(bit_or(exponent, broadcast_integer(kTwoTo52))),
                             broadcast(4503599627370496.0 + 1023.0));
    constexpr double kLn2 = 0.693147180559945309417232;
    return add(multiply(k, broadcast(kLn2)), add(look_up(kLogarithms, j), log_mantissa));
}

}  // namespace ovik::OVIK_KERNELS
