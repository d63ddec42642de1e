#include "util/rounded_functions.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "util/wide_number.h"

namespace ovik {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint64_t kFractionMask = 0x000FFFFFFFFFFFFFU;
constexpr std::uint64_t kHiddenBit = 0x0010000000000000U;
constexpr unsigned int kFractionBits = 52;
constexpr int kBias = 1023;

/// The double below log 2 that is nearest to it.
constexpr double kLog2 = 0x1.62e42fefa39efp-1;

/// log 2, at most 2^-240 too small.
constexpr WideNumber kWideLog2(
    {0xb62d8a0d175b8baa, 0xf6af40f343267298, 0x79abc9e3b39803f2, 0x0000b17217f7d1cf});

/// The size of a double as significand * 2^exponent.
struct Parts {
    std::uint64_t significand;
    int exponent;
};

Parts parts_of(double x) {
    const auto bits = std::bit_cast<std::uint64_t>(std::fabs(x));
    const auto biased = static_cast<int>(bits >> kFractionBits);
    const std::uint64_t fraction = bits & kFractionMask;
    constexpr int kLeast = 1 - kBias - static_cast<int>(kFractionBits);
    return biased == 0 ? Parts{fraction, kLeast}
                       : Parts{fraction | kHiddenBit, kLeast + biased - 1};
}

/// |x| * 2^exponent, which is below 2^16.
WideNumber wide(double x, int exponent) {
    const Parts parts = parts_of(x);
    return WideNumber::ofScaled(parts.significand, parts.exponent + exponent);
}

/// e^r for r below 0.75, from e^(r / 2^8), at most 2^-225 too small.
WideNumber wide_exp(const WideNumber& r) {
    constexpr unsigned int kHalvings = 8;
    // (0.75 / 2^8)^25 / 25! is below 2^-290.
    constexpr std::uint32_t kTerms = 24;
    const WideNumber one = WideNumber::ofWhole(1);
    const WideNumber part = r.halved(kHalvings);
    WideNumber power = one;
    for (std::uint32_t n = kTerms; n > 0; --n) {
        power = one + part * power / n;
    }
    for (unsigned int i = 0; i < kHalvings; ++i) {
        power = power * power;
    }
    return power;
}

/// A number with its sign.
struct SignedWide {
    WideNumber size;
    bool is_negative;
};

SignedWide sum(const SignedWide& a, const SignedWide& b) {
    if (a.is_negative == b.is_negative) {
        return {a.size + b.size, a.is_negative};
    }
    return a.size < b.size ? SignedWide{b.size - a.size, b.is_negative}
                           : SignedWide{a.size - b.size, a.is_negative};
}

/// log(1 + delta) for |delta| below 2^-45, by four terms of its series.
SignedWide wide_log1p(const SignedWide& delta) {
    const WideNumber& d = delta.size;
    const WideNumber squared = d * d;
    const SignedWide odd{d + squared * d / 3, delta.is_negative};
    return sum(odd, {squared / 2 + squared * squared / 4, true});
}

/// A number above 0 as (high + low) * 2^exponent: high in [1, 2), low at most 2^-53 in size.
struct Scaled {
    double high;
    double low;
    int exponent;
};

/// high + low, which differs from a logarithm by `error` at most.
struct Approximation {
    double high;
    double low;
    double error;
};

/// For numbers near to the middle of one of 128 parts of [1, 2), those from 181/128 on halved: a
/// short reciprocal, and minus its logarithm as a multiple of 2^-42 and the rest. Next to 1 it
/// is 1.
struct Middle {
    double reciprocal;
    double logarithm;
    double rest;
};

constexpr std::size_t kMiddles = 128;
constexpr std::size_t kFirstHalved = 53;

constexpr Middle kMiddleTable[kMiddles] = {
    {0x1.0000000000000p+0, 0x0.0p+0, 0x0.0p+0},
    {0x1.fa00000000000p-1, 0x1.82448a3880000p-7, 0x1.4554412c584e0p-44},
    {0x1.f600000000000p-1, 0x1.432a925980000p-6, 0x1.98139928637fep-47},
    {0x1.f280000000000p-1, 0x1.b5cc258b70000p-6, 0x1.8e611b8afbfe8p-46},
    {0x1.ee80000000000p-1, 0x1.1ce5a62bc0000p-5, 0x1.a9cc78d8df999p-44},
    {0x1.eb00000000000p-1, 0x1.5715c4c040000p-5, -0x1.8888ddfc47628p-44},
    {0x1.e780000000000p-1, 0x1.91b073efd8000p-5, -0x1.9d7c53f76ca96p-46},
    {0x1.e380000000000p-1, 0x1.d52ed64060000p-5, -0x1.3c85d2a29bbd6p-44},
    {0x1.e000000000000p-1, 0x1.08598b59e4000p-4, -0x1.7e5dd7009902cp-46},
    {0x1.dc80000000000p-1, 0x1.26536c3d8c000p-4, 0x1.b4bac097c5ba3p-47},
    {0x1.d900000000000p-1, 0x1.4485e03dbc000p-4, 0x1.fad46e8d26ab7p-44},
    {0x1.d600000000000p-1, 0x1.5e95a4d978000p-4, 0x1.1cb7ce1d17171p-44},
    {0x1.d280000000000p-1, 0x1.7d33687c28000p-4, 0x1.3c88c3e706706p-44},
    {0x1.cf00000000000p-1, 0x1.9c0c32d4d4000p-4, -0x1.ab7c09e838668p-44},
    {0x1.cc00000000000p-1, 0x1.b6ac88dad4000p-4, 0x1.b1bdff50225c7p-44},
    {0x1.c880000000000p-1, 0x1.d5f5565920000p-4, 0x1.0e239cc185469p-44},
    {0x1.c580000000000p-1, 0x1.f0f70cdd98000p-4, 0x1.2e31f6c272c1ep-44},
    {0x1.c280000000000p-1, 0x1.06135354d4000p-3, 0x1.6304628340ee9p-44},
    {0x1.bf80000000000p-1, 0x1.13c2605c3a000p-3, -0x1.cf5fdd94f6509p-45},
    {0x1.bc80000000000p-1, 0x1.2188fd9808000p-3, -0x1.b3a1e7f50c701p-44},
    {0x1.b980000000000p-1, 0x1.2f677cbbc0000p-3, 0x1.52b302160f40dp-44},
    {0x1.b680000000000p-1, 0x1.3d5e3126bc000p-3, 0x1.3fb2f85096c4bp-46},
    {0x1.b380000000000p-1, 0x1.4b6d6fefe2000p-3, 0x1.522ecf56e7952p-46},
    {0x1.b080000000000p-1, 0x1.59958ff1d6000p-3, -0x1.a1d059769ca05p-44},
    {0x1.ad80000000000p-1, 0x1.67d6e9d786000p-3, -0x1.11e8830a706d3p-44},
    {0x1.ab00000000000p-1, 0x1.73cb9074fe000p-3, -0x1.d66a90d0005a6p-44},
    {0x1.a800000000000p-1, 0x1.823c16551a000p-3, 0x1.e0ddb9a631e83p-46},
    {0x1.a580000000000p-1, 0x1.8e588ebac2000p-3, 0x1.b7d5cab2d1140p-44},
    {0x1.a300000000000p-1, 0x1.9a8778deba000p-3, 0x1.470fa3efec390p-44},
    {0x1.a000000000000p-1, 0x1.a93ed3c8ae000p-3, -0x1.8724350562169p-45},
    {0x1.9d80000000000p-1, 0x1.b5971a213a000p-3, 0x1.9b50e83aa91dfp-44},
    {0x1.9b00000000000p-1, 0x1.c2028ab180000p-3, -0x1.92e0ee55c7ac6p-45},
    {0x1.9880000000000p-1, 0x1.ce816157f2000p-3, -0x1.9e0aba2099515p-45},
    {0x1.9600000000000p-1, 0x1.db13db0d48000p-3, 0x1.2806a847527e6p-44},
    {0x1.9380000000000p-1, 0x1.e7ba35eb78000p-3, -0x1.d5eee23793649p-47},
    {0x1.9100000000000p-1, 0x1.f474b134e0000p-3, -0x1.bae49f1df7b5ep-44},
    {0x1.8e80000000000p-1, 0x1.00a1c6adda000p-2, 0x1.1cd8d688b9e18p-44},
    {0x1.8c00000000000p-1, 0x1.07138604d6000p-2, -0x1.e76324e912b17p-44},
    {0x1.8980000000000p-1, 0x1.0d8fb813eb000p-2, 0x1.ee8c88753fa35p-46},
    {0x1.8780000000000p-1, 0x1.12c77cd007000p-2, 0x1.3b2948a11f797p-46},
    {0x1.8500000000000p-1, 0x1.1956d3b9bc000p-2, 0x1.7d2f73ad1aa14p-45},
    {0x1.8280000000000p-1, 0x1.1ff0fe7cf4000p-2, 0x1.e9d5b513ff0c1p-44},
    {0x1.8080000000000p-1, 0x1.25410494e5000p-2, 0x1.b1d7ac0ef77f2p-44},
    {0x1.7e00000000000p-1, 0x1.2bef07cdc9000p-2, 0x1.a9cfa4a5004f4p-45},
    {0x1.7c00000000000p-1, 0x1.314f1e1d36000p-2, -0x1.8e27ad3213cb8p-45},
    {0x1.7980000000000p-1, 0x1.3811728565000p-2, -0x1.a71e493a0702bp-45},
    {0x1.7780000000000p-1, 0x1.3d81fb5947000p-2, -0x1.22c7c2a9d37a4p-45},
    {0x1.7580000000000p-1, 0x1.42f9f3ff62000p-2, 0x1.906440f7d3354p-44},
    {0x1.7380000000000p-1, 0x1.487970e958000p-2, 0x1.dc1b8465cf25fp-44},
    {0x1.7100000000000p-1, 0x1.4f637ebbaa000p-2, -0x1.fc158cb3124b9p-44},
    {0x1.6f00000000000p-1, 0x1.54f431b7be000p-2, 0x1.a8954c0910952p-46},
    {0x1.6d00000000000p-1, 0x1.5a8cadbbee000p-2, -0x1.7c79b0af7ecf8p-48},
    {0x1.6b00000000000p-1, 0x1.602d08af09000p-2, 0x1.ebe9176df3f65p-46},
    {0x1.6900000000000p+0, -0x1.5ff3070a79000p-2, -0x1.e9e439f105039p-45},
    {0x1.6700000000000p+0, -0x1.5a42ab0f4d000p-2, 0x1.e63af2df7ba69p-50},
    {0x1.6500000000000p+0, -0x1.548a2c3add000p-2, -0x1.3167e63081cf7p-45},
    {0x1.6300000000000p+0, -0x1.4ec9732600000p-2, -0x1.34d7aaf04d104p-45},
    {0x1.6180000000000p+0, -0x1.4a7373ced0000p-2, 0x1.9a234ebf35449p-44},
    {0x1.5f80000000000p+0, -0x1.44a41b463c000p-2, -0x1.1ee28f37cf612p-44},
    {0x1.5d80000000000p+0, -0x1.3ecc460ef6000p-2, 0x1.6028627c1300fp-47},
    {0x1.5b80000000000p+0, -0x1.38ebdb38ed000p-2, -0x1.90582e67d4ca0p-45},
    {0x1.5a00000000000p+0, -0x1.347dd9a988000p-2, 0x1.5594dd4c58092p-45},
    {0x1.5800000000000p+0, -0x1.2e8e2bae12000p-2, 0x1.67b1e99b72bd8p-45},
    {0x1.5600000000000p+0, -0x1.2895a13de8000p-2, -0x1.a8d7ad24c13f0p-44},
    {0x1.5480000000000p+0, -0x1.241558bfd1000p-2, -0x1.00fff3228fcadp-44},
    {0x1.5280000000000p+0, -0x1.1e0d0c3371000p-2, -0x1.af8f2a9b0d4a0p-44},
    {0x1.5100000000000p+0, -0x1.1980d2dd42000p-2, -0x1.b7b3a7a361c9ap-45},
    {0x1.4f00000000000p+0, -0x1.136870293b000p-2, 0x1.d3e8499d67123p-44},
    {0x1.4d80000000000p+0, -0x1.0ed005f658000p-2, 0x1.2dc75285aa803p-45},
    {0x1.4c00000000000p+0, -0x1.0a324e2739000p-2, -0x1.c6bee7ef4030ep-47},
    {0x1.4a00000000000p+0, -0x1.0402594b4d000p-2, -0x1.036b89ef42d7fp-48},
    {0x1.4880000000000p+0, -0x1.feb0233e60000p-3, -0x1.f316e32d5e8c7p-45},
    {0x1.4700000000000p+0, -0x1.f550a564b8000p-3, 0x1.323e3a09202fep-45},
    {0x1.4500000000000p+0, -0x1.e8c0252aa6000p-3, 0x1.6805b80e8e6ffp-45},
    {0x1.4380000000000p+0, -0x1.df46c0c722000p-3, -0x1.a5e82b0b79039p-44},
    {0x1.4200000000000p+0, -0x1.d5c216b4fc000p-3, 0x1.1ba91bbca681bp-45},
    {0x1.4080000000000p+0, -0x1.cc320c0176000p-3, -0x1.409039a653794p-45},
    {0x1.3f00000000000p+0, -0x1.c2968558c2000p-3, 0x1.cfd73dee38a40p-45},
    {0x1.3d80000000000p+0, -0x1.b8ef670420000p-3, -0x1.87533321788e0p-44},
    {0x1.3c00000000000p+0, -0x1.af3c94e80c000p-3, 0x1.a4e633fcd9066p-52},
    {0x1.3a80000000000p+0, -0x1.a57df28244000p-3, -0x1.b99c8ca1d9abbp-44},
    {0x1.3900000000000p+0, -0x1.9bb362e7e0000p-3, 0x1.1f2a8a1ce0ffcp-45},
    {0x1.3780000000000p+0, -0x1.91dcc8c340000p-3, -0x1.7bc6abddeff46p-44},
    {0x1.3600000000000p+0, -0x1.87fa06520c000p-3, -0x1.22120401202fcp-44},
    {0x1.3480000000000p+0, -0x1.7e0afd630c000p-3, -0x1.39e7c1d8f1034p-46},
    {0x1.3300000000000p+0, -0x1.740f8f5404000p-3, 0x1.0b66c99018aa1p-44},
    {0x1.3180000000000p+0, -0x1.6a079d0f7a000p-3, -0x1.5a3f8448d14f5p-44},
    {0x1.3000000000000p+0, -0x1.5ff3070a7a000p-3, 0x1.8586f183bebf2p-44},
    {0x1.2e80000000000p+0, -0x1.55d1ad4232000p-3, -0x1.add94dda647e8p-44},
    {0x1.2d80000000000p+0, -0x1.4f099f4a24000p-3, 0x1.e9bf2fafeaf27p-44},
    {0x1.2c00000000000p+0, -0x1.44d2b6ccb8000p-3, 0x1.70cc16135783cp-46},
    {0x1.2a80000000000p+0, -0x1.3a8eb2d31a000p-3, -0x1.bafb77d5d503ep-46},
    {0x1.2900000000000p+0, -0x1.303d718e48000p-3, 0x1.680b5ce3ecb05p-50},
    {0x1.2800000000000p+0, -0x1.29552f8200000p-3, 0x1.5b967f4471dfcp-44},
    {0x1.2680000000000p+0, -0x1.1eed90e2dc000p-3, -0x1.615637097648fp-46},
    {0x1.2500000000000p+0, -0x1.1478584674000p-3, -0x1.563451027c750p-46},
    {0x1.2400000000000p+0, -0x1.0d77e7cd08000p-3, -0x1.cb2cd2ee2f482p-44},
    {0x1.2280000000000p+0, -0x1.02ebb42bf4000p-3, 0x1.5a8fa5ce00e5dp-46},
    {0x1.2180000000000p+0, -0x1.f7b79fec38000p-4, 0x1.10987e897ed01p-47},
    {0x1.2000000000000p+0, -0x1.e27076e2b0000p-4, 0x1.a342c2af0003cp-45},
    {0x1.1f00000000000p+0, -0x1.d4313d66cc000p-4, 0x1.9454379135713p-45},
    {0x1.1d80000000000p+0, -0x1.beba818148000p-4, 0x1.89b78b6df1f57p-44},
    {0x1.1c80000000000p+0, -0x1.b05b49bee4000p-4, -0x1.ff22c18f84a5ep-47},
    {0x1.1b00000000000p+0, -0x1.9ab4246204000p-4, 0x1.8a64826787061p-45},
    {0x1.1a00000000000p+0, -0x1.8c345d6318000p-4, -0x1.b20f5acb42a66p-44},
    {0x1.1880000000000p+0, -0x1.765bf23a6c000p-4, 0x1.ecbc035c4256ap-48},
    {0x1.1780000000000p+0, -0x1.67bb0726ec000p-4, -0x1.f724b69ef5912p-49},
    {0x1.1680000000000p+0, -0x1.590cafdf00000p-4, -0x1.c284f5722abaap-44},
    {0x1.1500000000000p+0, -0x1.42edcbea64000p-4, -0x1.bc0eeea7c9acdp-46},
    {0x1.1400000000000p+0, -0x1.341d7961bc000p-4, -0x1.1d09299837610p-44},
    {0x1.1300000000000p+0, -0x1.253f62f0a0000p-4, -0x1.416f8fb69a701p-44},
    {0x1.1180000000000p+0, -0x1.0ed839b554000p-4, 0x1.901f46d48abb4p-44},
    {0x1.1080000000000p+0, -0x1.ffae9119b8000p-5, -0x1.303374262c554p-45},
    {0x1.0f80000000000p+0, -0x1.e19070c278000p-5, 0x1.fea4664629e86p-45},
    {0x1.0e80000000000p+0, -0x1.c355dd0920000p-5, -0x1.f2ccc9abf8388p-45},
    {0x1.0d00000000000p+0, -0x1.95c830ec90000p-5, 0x1.c148297c5feb8p-45},
    {0x1.0c00000000000p+0, -0x1.77458f6330000p-5, 0x1.181dce586af09p-44},
    {0x1.0b00000000000p+0, -0x1.58a5bafc90000p-5, 0x1.b2b739570ad39p-45},
    {0x1.0a00000000000p+0, -0x1.39e87b9fe8000p-5, -0x1.eafd480ad9015p-44},
    {0x1.0900000000000p+0, -0x1.1b0d989240000p-5, 0x1.3401e9ae889bbp-44},
    {0x1.0780000000000p+0, -0x1.d91a66c540000p-6, -0x1.e61f1658cfb9ap-45},
    {0x1.0680000000000p+0, -0x1.9ace7551d0000p-6, 0x1.d75d97ec7c410p-45},
    {0x1.0580000000000p+0, -0x1.5c45a51b90000p-6, 0x1.63bb6216d87d8p-45},
    {0x1.0480000000000p+0, -0x1.1d7f7eb9f0000p-6, 0x1.4193a83fcc7a6p-46},
    {0x1.0380000000000p+0, -0x1.bcf712c740000p-7, -0x1.c25e097bd9771p-46},
    {0x1.0280000000000p+0, -0x1.3e7295d260000p-7, 0x1.609c1ff29a114p-45},
    {0x1.0180000000000p+0, -0x1.7ee11ebd80000p-8, -0x1.749d3c2d23a07p-47},
    {0x1.0000000000000p+0, 0x0.0p+0, 0x0.0p+0},
};

/// z^2 times the series of (log(1 + z) - z) / z^2 for |z| <= 2^-7, right to 2^-51 * z^2.
double tail_of_series(double z) {
    double sum = -1.0 / 10.0;
    constexpr double kFactors[] = {
        1.0 / 9.0, -1.0 / 8.0, 1.0 / 7.0, -1.0 / 6.0, 1.0 / 5.0, -1.0 / 4.0, 1.0 / 3.0, -1.0 / 2.0};
    for (const double factor : kFactors) {
        sum = factor + z * sum;
    }
    return z * z * sum;
}

/// log x = e * log 2 - log c + log(1 + z), where z = c * m - 1 is at most 2^-7 in size.
Approximation quick_log(const Scaled& x) {
    constexpr double kLog2High = 0x1.62e42fefa3800p-1;
    constexpr double kLog2Low = 0x1.ef35793c76730p-45;
    constexpr unsigned int kIndexShift = kFractionBits - 7;
    constexpr std::uint64_t kHighBits = 0xFFFFFFFFF8000000U;
    const auto bits = std::bit_cast<std::uint64_t>(x.high);
    const auto index = static_cast<std::size_t>((bits & kFractionMask) >> kIndexShift);
    const Middle& middle = kMiddleTable[index];
    const bool is_halved = index >= kFirstHalved;
    const double scale = is_halved ? 0.5 : 1.0;
    const double e = x.exponent + (is_halved ? 1 : 0);
    // The products of the parts with so few bits are exact.
    const double upper = std::bit_cast<double>(bits & kHighBits);
    const double z_upper = upper * scale * middle.reciprocal - 1.0;
    const double z_lower = (x.high - upper) * scale * middle.reciprocal;
    const double z = z_upper + z_lower;
    const double z_rest = z_lower - (z - z_upper) + x.low * scale * middle.reciprocal;
    const double whole = e * kLog2High + middle.logarithm;
    const double high = whole + z;
    // Where `whole` is not 0, it is above |z|.
    const double rest = whole == 0.0 ? 0.0 : z - (high - whole);
    const double low =
        tail_of_series(z) + (rest + (z_rest / (1.0 + z) + (e * kLog2Low + middle.rest)));
    const double error = 0x1p-50 * (z * z + std::fabs(z_rest)) + 0x1p-85 * std::fabs(whole);
    return {high, low, error};
}

/// The logarithm of `exact` * 2^x.exponent, which x is the approximation of.
double slow_log(const WideNumber& exact, const Scaled& x) {
    const Approximation near = quick_log({x.high, x.low, 0});
    const double y = std::clamp(near.high + near.low, 0.0, kLog2);
    // log m = y + log(1 + d), where 1 + d = m * e^-y; 2 * e^-y is above 1.
    const WideNumber ratio = (exact * wide_exp(kWideLog2 - wide(y, 0))).halved(1);
    const SignedWide d = sum({ratio, false}, {WideNumber::ofWhole(1), true});
    const auto exponent = static_cast<std::uint32_t>(std::abs(x.exponent));
    const SignedWide of_power{kWideLog2 * exponent, x.exponent < 0};
    const SignedWide result = sum(of_power, sum({wide(y, 0), false}, wide_log1p(d)));
    const double size = result.size.rounded(0);
    return result.is_negative ? -size : size;
}

/// Whether all numbers within the error round to the same double.
bool is_decided(const Approximation& a) {
    return a.high + (a.low - a.error) == a.high + (a.low + a.error);
}

Scaled scaled(double x) {
    const Parts parts = parts_of(x);
    const int places =
        static_cast<int>(kFractionBits) + 1 - static_cast<int>(std::bit_width(parts.significand));
    const std::uint64_t fraction =
        (parts.significand << static_cast<unsigned int>(places)) & kFractionMask;
    const std::uint64_t exponent_of_1 = std::uint64_t{kBias} << kFractionBits;
    return {std::bit_cast<double>(fraction | exponent_of_1),
            0.0,
            parts.exponent - places + static_cast<int>(kFractionBits)};
}

}  // namespace

double rounded_exp(double x) {
    // Above and below, the result is beyond the largest double, or below half the least.
    constexpr double kMost = 0x1.62e42fefa39efp+9;
    constexpr double kLeast = -0x1.74910d52d3051p+9;
    if (std::isnan(x)) {
        return x;
    }
    if (x > kMost) {
        return kInfinity;
    }
    if (x < kLeast) {
        return 0.0;
    }
    if (std::fabs(x) < 0x1p-54) {
        return 1.0 + x;
    }
    // x = k * log 2 + r
    const auto k = static_cast<int>(std::floor(x / kLog2));
    const SignedWide multiple{kWideLog2 * static_cast<std::uint32_t>(std::abs(k)), k > 0};
    const SignedWide r = sum({wide(x, 0), x < 0.0}, multiple);
    // Rounding may have made k too large, by 1 and r by next to nothing.
    return r.is_negative ? wide_exp(kWideLog2 - r.size).rounded(k - 1)
                         : wide_exp(r.size).rounded(k);
}

double rounded_log(double x) {
    if (std::isnan(x) || x == kInfinity) {
        return x;
    }
    if (x <= 0.0) {
        return x == 0.0 ? -kInfinity : kNaN;
    }
    if (x == 1.0) {
        return 0.0;
    }
    const Scaled parts = scaled(x);
    const Approximation quick = quick_log(parts);
    return is_decided(quick) ? quick.high + quick.low : slow_log(wide(parts.high, 0), parts);
}

double rounded_log1p(double x) {
    if (std::isnan(x) || x == kInfinity || std::fabs(x) < 0x1p-54) {
        return x;
    }
    if (x <= -1.0) {
        return x == -1.0 ? -kInfinity : kNaN;
    }
    const double sum_high = 1.0 + x;
    const double from_x = sum_high - 1.0;
    const double sum_low = (1.0 - (sum_high - from_x)) + (x - from_x);
    Scaled parts = scaled(sum_high);
    parts.low = std::ldexp(sum_low, -parts.exponent);
    const Approximation quick = quick_log(parts);
    if (is_decided(quick)) {
        return quick.high + quick.low;
    }
    // Where the sum is not exact, its exponent is -1 or more.
    const SignedWide exact = sum_low == 0.0 ? SignedWide{wide(parts.high, 0), false}
                                            : sum({wide(1.0, -parts.exponent), false},
                                                  {wide(x, -parts.exponent), x < 0.0});
    return slow_log(exact.size, parts);
}

}  // namespace ovik
