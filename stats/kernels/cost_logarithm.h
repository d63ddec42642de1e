#pragma once

#include "util/kernels/lanes.h"

/// The logarithms of the cost over sparse affinities. Several million of them are formed in an
/// iteration, and their sum is printed with six decimals: fewer operations count for more than the
/// last four digits.

namespace ovik::OVIK_KERNELS {

/// kScale * 2^(-i / 8).
alignas(sizeof(Lanes)) constexpr double kEighths[8] = {0x1.feb78da89c0dbp-1,
                                                       0x1.d4545df6e5778p-1,
                                                       0x1.ad75c90b94483p-1,
                                                       0x1.89d10fc96ffc0p-1,
                                                       0x1.6921a736597c9p-1,
                                                       0x1.4b28b4ac33361p-1,
                                                       0x1.2fac94fa537f1p-1,
                                                       0x1.16786d8f1257cp-1};

/// The l of `kLogarithmUnit` for positive normal numbers; finite for any number.
///
/// With x = 2^e * m and i the eighth of [1, 2) in which m lies, log2 x = e + i / 8 + log2 u, where
/// u = m * 2^(-i / 8) lies in [1, 1.1567]. There the polynomial of degree 7 that is nearest to
/// 8 * log2 u differs from it by 8.9e-12. As a polynomial of y = kScale * u, where kScale is such
/// that y^7 has the factor 1, and of z = y^2, it is
///
///     (((y + a0) * (z + b0) + a1) * (z + b1) + a2) * (z + b2) + kLogarithmOffset,
///
/// for -b0, -b1 and -b2 are the roots of its odd part: four products where there would be seven
/// (Knuth, "The Art of Computer Programming", 4.6.4; Eve, "The evaluation of polynomials", Numer.
/// Math. 6:17, 1964).
inline Lanes cost_logarithm(Lanes x) {
    const Bits bits = as_bits(x);
    const Bits eighths = bits >> 49U;
    // 8 * e + i becomes the last bits of a number of 2^52 and more.
    const Lanes whole = as_lanes(eighths | 0x4330000000000000U) - (0x1p52 + 8.0 * 1023.0);
    const Lanes m = as_lanes((bits & 0x000FFFFFFFFFFFFFU) | 0x3FF0000000000000U);
    const Lanes y = m * look_up_in_8(kEighths, eighths);
    const Lanes z = y * y;
    const Lanes degree3 = (y - 8.781339738878868) * (z + 30.487657532491554);
    const Lanes degree5 = (degree3 + 222.32339733260687) * (z + 2.506097936849888);
    const Lanes degree7 = (degree5 + 74.95995619823046) * (z + 0.9856196079637324);
    return whole + degree7;
}

}  // namespace ovik::OVIK_KERNELS
