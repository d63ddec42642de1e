#pragma once

#include "util/kernels/lanes.h"
#include "util/kernels/sixteenths.h"

namespace ovik::OVIK_KERNELS {

/// The logarithms of 1 / kReciprocals; the first is chosen so that log 1 is exactly 0.
alignas(sizeof(Lanes)) constexpr double kLogarithms[16] = {0.030771658666753594,
                                                           0.08961215868968717,
                                                           0.14518200984449783,
                                                           0.19782574332991992,
                                                           0.2478361639045812,
                                                           0.2954642128938359,
                                                           0.3409265869705932,
                                                           0.38441169891033206,
                                                           0.42608439531090014,
                                                           0.46608972992459924,
                                                           0.5045560107523953,
                                                           0.5415972824327444,
                                                           0.5773153650348236,
                                                           0.6118015411059929,
                                                           0.6451379613735847,
                                                           0.6773988235918061};

/// Natural logarithms of positive normal numbers; finite for any number, and 0 for 1. Errors are at
/// most 5e-16, or 3e-16 of logarithms of 2 and more.
///
/// With x = 2^e * m and c the middle of the sixteenth of [1, 2) in which m lies, log x =
/// e * log 2 + log c + log(1 + r), where r = m / c - 1 is at most a = 1 / 33 in size. The last is
/// the series to r^9, whose last term is replaced by what the Chebyshev polynomial of that degree
/// has for it: r^9 is within a^9 / 256 of 9/4 a^2 r^7 - 27/16 a^4 r^5 + 15/32 a^6 r^3 - 9/256 a^8
/// r.
inline Lanes logarithm(Lanes x) {
    constexpr double kLog2 = 0.6931471805599453;
    const Bits bits = as_bits(x);
    // The exponent becomes the last bits of a number of 2^52 and more.
    const Lanes e = as_lanes((bits >> 52U) | 0x4330000000000000U) - (0x1p52 + 1023.0);
    const Lanes m = as_lanes((bits & 0x000FFFFFFFFFFFFFU) | 0x3FF0000000000000U);
    const Bits sixteenth = bits >> 48U;
    const Lanes r = m * look_up(kReciprocals, sixteenth) - 1.0;
    constexpr double kSquare = 1. / (33. * 33.);
    constexpr double kCoefficient1 = 1. - kSquare * kSquare * kSquare * kSquare / 256.;
    constexpr double kCoefficient3 = 1. / 3. + kSquare * kSquare * kSquare * 5. / 96.;
    constexpr double kCoefficient5 = 1. / 5. - kSquare * kSquare * 3. / 16.;
    constexpr double kCoefficient7 = 1. / 7. + kSquare / 4.;
    // In pairs of terms: short chains of operations that run side by side.
    const Lanes r2 = r * r;
    const Lanes low = (kCoefficient1 - r * (1. / 2.)) + r2 * (kCoefficient3 - r * (1. / 4.));
    const Lanes high = (kCoefficient5 - r * (1. / 6.)) + r2 * (kCoefficient7 - r * (1. / 8.));
    const Lanes series = (low + r2 * r2 * high) * r;
    return e * kLog2 + (look_up(kLogarithms, sixteenth) + series);
}

}  // namespace ovik::OVIK_KERNELS
