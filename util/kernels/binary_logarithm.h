#pragma once

#include "util/kernels/lanes.h"
#include "util/kernels/sixteenths.h"

namespace ovik::OVIK_KERNELS {

/// The binary logarithms of the middles of the sixteenths of [1, 2).
alignas(sizeof(Lanes)) constexpr double kMiddleLogarithms[16] = {0.044394119358453395,
                                                                 0.1292830169449665,
                                                                 0.2094533656289497,
                                                                 0.28540221886224837,
                                                                 0.3575520046180836,
                                                                 0.42626475470209796,
                                                                 0.49185309632967467,
                                                                 0.5545888516776374,
                                                                 0.6147098441152083,
                                                                 0.6724253419714956,
                                                                 0.7279204545631992,
                                                                 0.7813597135246597,
                                                                 0.8328900141647417,
                                                                 0.8826430493618412,
                                                                 0.9307373375628862,
                                                                 0.9772799234999165};

/// Numbers below 2^kExponents have logarithms.
constexpr std::size_t kExponents = 212;

#if OVIK_LANES < 8

/// For each sixteenth of [2^e, 2^(e + 1)) the reciprocal of its middle, and the middle's logarithm.
struct MiddleTable {
    constexpr MiddleTable() : pairs{} {
        double unit = 1.0;
        for (std::size_t e = 0; e < kExponents; ++e, unit *= 0.5) {
            for (std::size_t i = 0; i < 16; ++i) {
                pairs[2 * (16 * e + i)] = kReciprocals[i] * unit;
                pairs[2 * (16 * e + i) + 1] = static_cast<double>(e) + kMiddleLogarithms[i];
            }
        }
    }

    double pairs[kExponents * 32];
};

alignas(16) constexpr MiddleTable kMiddleTable;

#endif

/// Binary logarithms of numbers from 1 to below 2^212 for sums that are printed to a few digits:
/// errors are at most 1e-13, and 2e-16 of the logarithm. In half the steps of `logarithm`.
///
/// With x = 2^e * m and c the middle of the sixteenth of [1, 2) in which m lies, log2 x = e +
/// log2 c + log2(1 + r), where r = m / c - 1 is at most a = 1 / 33 in size. The last is the series
/// to r^8, whose last two terms are replaced by what the Chebyshev polynomials of their degrees
/// have for them: r^7 is within a^7 / 64 of 7/4 a^2 r^5 - 7/8 a^4 r^3 + 7/64 a^6 r, and r^8 within
/// a^8 / 64 of 2 a^2 r^6 - 5/4 a^4 r^4 + 1/4 a^6 r^2.
inline Lanes binary_logarithm(Lanes x) {
#if OVIK_LANES == 8
    const Bits sixteenth = as_bits(x) >> 48U;
    const Lanes m = _mm512_maskz_getmant_pd(0xFF, x, _MM_MANT_NORM_1_2, _MM_MANT_SIGN_src);
    const Lanes quotient = m * look_up(kReciprocals, sixteenth);
    const Lanes middle = _mm512_maskz_getexp_pd(0xFF, x) + look_up(kMiddleLogarithms, sixteenth);
#else
    // Exponent and sixteenth are the highest 16 bits of a number.
    constexpr std::uint64_t kBitsOfOne = 0x3FF0;
    const Bits places = (as_bits(x) >> 48U) - kBitsOfOne;
    std::uint32_t indices[kLanes];
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        indices[lane] = static_cast<std::uint32_t>(places[lane]);
    }
    Lanes of_middles[2];
    gather_pairs<2>(kMiddleTable.pairs, indices, of_middles);
    const Lanes quotient = x * of_middles[0];
    const Lanes middle = of_middles[1];
#endif
    const Lanes r = quotient - 1.0;
    constexpr double kUnit = 1.4426950408889634;  // log2 of Euler's number
    constexpr double kSquare = 1. / (33. * 33.);
    constexpr double kCoefficient1 = kUnit * (1. + kSquare * kSquare * kSquare / 64.);
    constexpr double kCoefficient2 = -kUnit * (1. / 2. + kSquare * kSquare * kSquare / 32.);
    constexpr double kCoefficient3 = kUnit * (1. / 3. - kSquare * kSquare / 8.);
    constexpr double kCoefficient4 = -kUnit * (1. / 4. - kSquare * kSquare * 5. / 32.);
    constexpr double kCoefficient5 = kUnit * (1. / 5. + kSquare / 4.);
    constexpr double kCoefficient6 = -kUnit * (1. / 6. + kSquare / 4.);
    // In pairs of terms: short chains of operations that run side by side.
    const Lanes r2 = r * r;
    const Lanes high =
        (kCoefficient3 + r * kCoefficient4) + r2 * (kCoefficient5 + r * kCoefficient6);
    const Lanes series = ((kCoefficient1 + r * kCoefficient2) + r2 * high) * r;
    return middle + series;
}

}  // namespace ovik::OVIK_KERNELS
