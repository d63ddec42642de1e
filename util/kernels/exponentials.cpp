#include "util/kernels/exponentials.h"

#include "util/kernels/lanes.h"
#include "util/rounded_functions.h"

namespace ovik::OVIK_KERNELS {

namespace {

constexpr double kParts = 128.0;

/// 2^(i / 128): 26 bits of it, and the rest.
alignas(sizeof(Lanes)) constexpr double kPowers[] = {
    0x1.0000000000000p+0, 0x0.0p+0,
    0x1.0163da8000000p+0, 0x1.fb33356d84a67p-28,
    0x1.02c9a40000000p+0, -0x1.887f9f1190835p-28,
    0x1.04315e8000000p+0, 0x1.b9fe12f5ce3e7p-30,
    0x1.059b0d0000000p+0, 0x1.8ac2ba1d73e2ap-27,
    0x1.0706b28000000p+0, 0x1.ddf6ddc6dc404p-28,
    0x1.0874518000000p+0, 0x1.d66f20230d7c9p-30,
    0x1.09e3ec8000000p+0, 0x1.6379c1a290f03p-27,
    0x1.0b55870000000p+0, -0x1.833b784eb3a37p-27,
    0x1.0cc9228000000p+0, 0x1.b923fba03db83p-27,
    0x1.0e3ec30000000p+0, 0x1.69e8d10103a17p-27,
    0x1.0fb66b0000000p+0, -0x1.2ce50dcdf6e22p-36,
    0x1.11301d0000000p+0, 0x1.25b50a4ebbf1bp-32,
    0x1.12abdc0000000p+0, 0x1.b0c72fee4aeb5p-30,
    0x1.1429ab0000000p+0, -0x1.56d2204cbefe7p-28,
    0x1.15a98c8000000p+0, 0x1.4b1ca24901aaep-29,
    0x1.172b840000000p+0, -0x1.c15742919041cp-27,
    0x1.18af938000000p+0, 0x1.191bd3777ee17p-29,
    0x1.1a35be8000000p+0, 0x1.b7e5ba9e5b4c8p-27,
    0x1.1bbe088000000p+0, -0x1.fdd19632a70c7p-27,
    0x1.1d48730000000p+0, 0x1.68b9aa7805b80p-28,
    0x1.1ed5020000000p+0, 0x1.7e6c8e5c40d00p-27,
    0x1.2063b88000000p+0, 0x1.8a3358ee3bac1p-30,
    0x1.21f4990000000p+0, 0x1.7ddc962552fd3p-28,
    0x1.2387a70000000p+0, -0x1.8a9dc7993e052p-28,
    0x1.251ce50000000p+0, -0x1.35670329f5521p-30,
    0x1.26b4568000000p+0, -0x1.0ec1916d42cc6p-27,
    0x1.284dfe0000000p+0, 0x1.f5638096cf15dp-28,
    0x1.29e9df8000000p+0, -0x1.70108f69ed175p-27,
    0x1.2b87fd0000000p+0, 0x1.b5b31ffbbd48dp-29,
    0x1.2d285a8000000p+0, -0x1.1bfcf4bff6e2bp-28,
    0x1.2ecafa8000000p+0, 0x1.3e2f5611ca0f4p-28,
    0x1.306fe08000000p+0, 0x1.18db8a96f46adp-27,
    0x1.3217100000000p+0, -0x1.d993e76563187p-27,
    0x1.33c08b0000000p+0, 0x1.320b7fa64e431p-27,
    0x1.356c560000000p+0, -0x1.b5803cdae772ep-30,
    0x1.371a738000000p+0, -0x1.8aac6ab1d7560p-29,
    0x1.38cae70000000p+0, -0x1.7d13cd3d2b1a8p-27,
    0x1.3a7db38000000p+0, -0x1.8d30048af21b7p-27,
    0x1.3c32dc0000000p+0, 0x1.89d47242000f9p-27,
    0x1.3dea650000000p+0, -0x1.f6e5eee525f6fp-27,
    0x1.3fa4508000000p+0, -0x1.a9bff22fa047fp-27,
    0x1.4160a20000000p+0, 0x1.f72e29f84325cp-28,
    0x1.431f5d8000000p+0, 0x1.50a896dc70444p-28,
    0x1.44e0860000000p+0, 0x1.8624b40c4dbd0p-30,
    0x1.46a41f0000000p+0, -0x1.717fd446d7686p-27,
    0x1.486a2b8000000p+0, -0x1.1f6197f61f2e2p-27,
    0x1.4a32af0000000p+0, 0x1.afa7bcce5b17ap-29,
    0x1.4bfdad8000000p+0, -0x1.64eaec715e343p-27,
    0x1.4dcb298000000p+0, 0x1.fddd0d63b36efp-28,
    0x1.4f9b278000000p+0, -0x1.62d35952cc275p-28,
    0x1.516daa0000000p+0, 0x1.67b320e0897a9p-27,
    0x1.5342b58000000p+0, -0x1.62b07e20f57c4p-28,
    0x1.551a4c8000000p+0, 0x1.2ec9076297631p-27,
    0x1.56f4738000000p+0, -0x1.4ad8259913500p-28,
    0x1.58d12d8000000p+0, -0x1.b41c016d6a1eap-27,
    0x1.5ab07e0000000p+0, -0x1.5bd5eb539b67fp-27,
    0x1.5c92688000000p+0, 0x1.2ca35b80e258ep-27,
    0x1.5e76f18000000p+0, -0x1.296f5bc8b20dap-27,
    0x1.605e1b8000000p+0, 0x1.76dc08b076f59p-28,
    0x1.6247eb0000000p+0, 0x1.d2ac258f87d03p-31,
    0x1.6434638000000p+0, -0x1.999e701c483c7p-27,
    0x1.6623880000000p+0, 0x1.2a91124893ecfp-27,
    0x1.68155d8000000p+0, -0x1.d9ab467bf1d47p-27,
    0x1.6a09e68000000p+0, -0x1.80c4336f74d05p-28,
    0x1.6c01278000000p+0, -0x1.7a12a08944ab3p-27,
    0x1.6dfb240000000p+0, -0x1.cd72e886ef8eap-27,
    0x1.6ff7df8000000p+0, 0x1.519483cf87e1bp-28,
    0x1.71f75e8000000p+0, 0x1.d8bee7ba46e1ep-29,
    0x1.73f9a48000000p+0, 0x1.4b02e77ab934ap-29,
    0x1.75feb58000000p+0, -0x1.bd98374091656p-28,
    0x1.7806950000000p+0, -0x1.0d1604f328fecp-31,
    0x1.7a11470000000p+0, 0x1.f580c36bea881p-27,
    0x1.7c1ed00000000p+0, 0x1.30c1327c49334p-28,
    0x1.7e2f338000000p+0, -0x1.30b19defa2fd4p-28,
    0x1.8042758000000p+0, -0x1.e0f2f724f90ccp-27,
    0x1.8258998000000p+0, 0x1.4cce128acf88bp-28,
    0x1.8471a48000000p+0, -0x1.dc385331ad094p-28,
    0x1.868d998000000p+0, 0x1.a2497640720edp-27,
    0x1.88ac7d8000000p+0, 0x1.8a669966530bdp-28,
    0x1.8ace540000000p+0, 0x1.15506dadd3e2bp-27,
    0x1.8cf3218000000p+0, -0x1.4abb7410d55e3p-28,
    0x1.8f1ae98000000p+0, 0x1.1577362b98274p-28,
    0x1.9145b08000000p+0, 0x1.c8ffe2c4530dap-27,
    0x1.93737b0000000p+0, 0x1.9b8bc9e8a0388p-29,
    0x1.95a44c8000000p+0, 0x1.e4290774da41bp-27,
    0x1.97d82a0000000p+0, -0x1.0d8d83a30b6f8p-31,
    0x1.9a0f170000000p+0, 0x1.940f737462137p-29,
    0x1.9c49180000000p+0, 0x1.51f8480e3e236p-27,
    0x1.9e86318000000p+0, 0x1.e323231824ca8p-28,
    0x1.a0c6678000000p+0, 0x1.aef2b2594d6d4p-27,
    0x1.a309bf0000000p+0, -0x1.dae966539f470p-27,
    0x1.a5503b0000000p+0, 0x1.1f12ae45a1225p-27,
    0x1.a799e10000000p+0, 0x1.9859ac3796fd9p-27,
    0x1.a9e6b58000000p+0, -0x1.4301205e0a6dep-27,
    0x1.ac36bc0000000p+0, -0x1.606431f9234cbp-31,
    0x1.ae89f98000000p+0, 0x1.5ad3ad5e8734dp-28,
    0x1.b0e0728000000p+0, 0x1.8db66590842adp-28,
    0x1.b33a2b8000000p+0, 0x1.3c57ebdaff43ap-30,
    0x1.b597290000000p+0, -0x1.0d536338e3bf7p-27,
    0x1.b7f76f0000000p+0, 0x1.7daf237553d84p-27,
    0x1.ba5b030000000p+0, 0x1.420c930819679p-29,
    0x1.bcc1e90000000p+0, 0x1.2f074891ee83dp-30,
    0x1.bf2c258000000p+0, 0x1.eb8f0442046b8p-27,
    0x1.c199be0000000p+0, -0x1.3d56b1eeef9a7p-27,
    0x1.c40ab60000000p+0, -0x1.7c2c975903ef8p-39,
    0x1.c67f130000000p+0, -0x1.a82eb4b5dec80p-28,
    0x1.c8f6d98000000p+0, -0x1.fc8c257729a1ep-27,
    0x1.cb720e0000000p+0, -0x1.8837cb757e1a1p-27,
    0x1.cdf0b58000000p+0, -0x1.511e031dd83b5p-27,
    0x1.d072d48000000p+0, 0x1.03c4bdc687918p-27,
    0x1.d2f8708000000p+0, 0x1.b13e315bc2473p-33,
    0x1.d5818e0000000p+0, -0x1.822dbc6d12fd3p-27,
    0x1.d80e318000000p+0, -0x1.367c68447b063p-28,
    0x1.da9e600000000p+0, 0x1.ed9942b84600dp-27,
    0x1.dd321f0000000p+0, 0x1.80da3025b4aefp-27,
    0x1.dfc9730000000p+0, 0x1.bdcdaf5cb4656p-27,
    0x1.e264618000000p+0, -0x1.852f6baf6c4f0p-27,
    0x1.e502ee8000000p+0, -0x1.d30027630bb40p-30,
    0x1.e7a51f8000000p+0, 0x1.e3a641a5aa459p-27,
    0x1.ea4afa0000000p+0, 0x1.52486cc2c7b9dp-27,
    0x1.ecf4830000000p+0, -0x1.38cc07b927e77p-27,
    0x1.efa1bf0000000p+0, -0x1.9ea5d888e02dep-28,
    0x1.f252b38000000p+0, -0x1.288ad162f2d20p-29,
    0x1.f507658000000p+0, 0x1.b722a033a7c26p-27,
    0x1.f7bfdb0000000p+0, -0x1.31a0f63b7625ap-27,
    0x1.fa7c180000000p+0, 0x1.9e90d82e90a7ep-28,
    0x1.fd3c228000000p+0, 0x1.c7b8f884badd2p-27,
};

/// Between them, e^x and its parts are normal numbers.
constexpr double kLeast = -708.0;
constexpr double kMost = 709.0;

/// A number by which a whole number and a fraction of a sum come apart: beside it, a double's last
/// place counts `last`.
constexpr double beside(double last) {
    return 0x1.8p52 * last;
}

/// Numbers with a rest each that is below their last place.
struct Sum {
    Lanes high;
    Lanes rest;
};

/// The difference of two numbers, and what is rounded off it.
Sum difference(Lanes a, Lanes b) {
    const Lanes high = a - b;
    const Lanes minus_b = high - a;
    return {high, (a - (high - minus_b)) - (b + minus_b)};
}

/// e^r - 1 - r for |r| <= 0.0028, to 2^-69.
Lanes tail_of_series(Lanes r) {
    const Lanes r2 = r * r;
    const Lanes low = r * (1.0 / 6.0) + 0.5;
    const Lanes high = r * (1.0 / 120.0) + 1.0 / 24.0;
    const Lanes last = r * (1.0 / 5040.0) + 1.0 / 720.0;
    return r2 * (low + r2 * (high + r2 * last));
}

/// e^x where it is decided; puts into `decided` the lanes in which it is.
///
/// With k the whole number nearest to x * 128 / log 2 and r = x - k * log 2 / 128, e^x =
/// 2^(k / 128) * e^r. The first parts of log 2 / 128 have 36 bits, so that their products with k
/// are exact, as is the product of the first parts of 2^(k mod 128 / 128) and of r. What is left is
/// at most 2^-17, formed in double precision, and off by 2^-67 at most; e^x is decided where all
/// numbers within twice that round to the same one (Ziv, "Fast evaluation of elementary
/// mathematical functions with correctly rounded last bit", ACM TOMS 17:410, 1991).
Lanes exponential(Lanes x, Mask& decided) {
    constexpr double kInverse = 0x1.71547652b82fep+0 * kParts;
    constexpr double kLog2First = 0x1.62e42fefa0000p-8;
    constexpr double kLog2Second = 0x1.cf79abc9e0000p-47;
    constexpr double kLog2Third = 0x1.d9cc01f97b57ap-86;
    const Lanes shifted = x * kInverse + beside(1.0);
    const Lanes k = shifted - beside(1.0);
    const Sum r = difference(x - k * kLog2First, k * kLog2Second);
    const Lanes r_rest = r.rest - k * kLog2Third;
    Lanes power[2];
    const Bits places = as_bits(shifted) & 127U;
    load_pairs([=](std::size_t lane) { return kPowers + 2 * places[lane]; }, power);
    const Lanes r_first = (r.high + beside(0x1p-33)) - beside(0x1p-33);
    const Lanes r_second = (r.high - r_first) + (r_rest + r_rest * r.high);
    const Lanes product = power[0] * r_first;
    const Lanes high = power[0] + product;
    const Lanes rounded_off = product - (high - power[0]);
    const Lanes tail = tail_of_series(r.high);
    const Lanes low =
        rounded_off + (power[1] + (power[1] * (r.high + tail) + power[0] * (r_second + tail)));
    constexpr double kError = 0x1p-66;
    const Lanes result = high + (low + kError);
    decided = equal(result, high + (low - kError)) & less(broadcast(kLeast), x) &
              less(x, broadcast(kMost));
    return as_lanes(as_bits(result) + ((as_bits(shifted) >> 7U) << 52U));
}

void exponentials_of_lanes(double* values) {
    const Lanes x = load(values);
    Mask decided = 0;
    store(values, exponential(x, decided));
    if (decided != kAll) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            if ((decided >> lane & 1U) == 0) {
                values[lane] = rounded_exp(x[lane]);
            }
        }
    }
}

void exponentials(double* values, std::size_t count) {
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        exponentials_of_lanes(values + i);
    }
    if (i < count) {
        double rest[kLanes] = {};
        __builtin_memcpy(rest, values + i, (count - i) * sizeof(double));
        exponentials_of_lanes(rest);
        __builtin_memcpy(values + i, rest, (count - i) * sizeof(double));
    }
}

}  // namespace

extern const ExponentialKernels kExponentialKernels;
const ExponentialKernels kExponentialKernels = {&exponentials};

}  // namespace ovik::OVIK_KERNELS
